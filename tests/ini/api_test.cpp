// SPDX-License-Identifier: MIT
// The handle API: slots, lookups, setting, the walk and writing (its failures: the fault tests').
#include <fskit/ini.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#if defined(__linux__)
#include <sys/mount.h>
#endif
#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "ini/ini_internal.h"
#include "tests/support/ini_walk.h"
#include "tests/support/test_support.h"

using namespace fskit::test;

namespace {

std::string valueOf(int32_t handle, const char *paragraph, const char *topic) {
  char value[1100] = "junk", comment[1] = {'x'};
  int32_t found = fsIniGetValue(handle, paragraph, topic, value, comment);
  EXPECT_EQ(comment[0], '\0');
  return found == 1 ? value : "<none:" + std::string(value) + ">";
}

// Reads `path`, sets [A] x to `value` and writes the file: fsIniWriteFile's result.
int32_t setAndWrite(const std::string &path, const char *value) {
  int32_t handle = fsIniReadFile(path.c_str());
  fsIniSetValue(handle, "A", "x", value, "");
  return fsIniWriteFile(handle);
}

const AfterEachTest reset{[] {
  for (int32_t handle = 1000; handle < 1010; ++handle) fsIniReleaseFile(handle);
}};

}  // namespace

TEST(IniApi, SlotTableGivesLowestFreeHandle) {
  TempDir dir;
  // Null names and bad handles are silent.
  EXPECT_EQ(captureStderr([] {
              EXPECT_EQ(fsIniNewFile(nullptr), 0);
              EXPECT_EQ(fsIniReadFile(nullptr), 0);
              for (int32_t bad : {0, 999, 1000, 1010, -1}) {
                char value[8] = "junk", comment[8] = "junk";
                EXPECT_EQ(fsIniGetValue(bad, "A", "x", value, comment), 0);
                EXPECT_STREQ(value, "");
                EXPECT_STREQ(comment, "");
                EXPECT_EQ(fsIniSetValue(bad, "A", "x", "1", ""), 0);
                EXPECT_EQ(fsIniNext(1, bad, value, value, value), 0);
                EXPECT_EQ(fsIniWriteFile(bad), 0);
                fsIniReleaseFile(bad);
              }
            }),
            "");
  // A directory used to give a handle of an empty document. No name takes a slot; none can be
  // written to.
  for (const std::string &name : {dir.file("no/such.ini"), std::string(), dir.path()}) {
    EXPECT_EQ(captureStderr([&] { EXPECT_EQ(fsIniReadFile(name.c_str()), 0); }),
              "Error opening ini file " + name + "\n");
    int32_t handle = fsIniNewFile(name.c_str());
    EXPECT_EQ(captureStderr([&] { EXPECT_EQ(fsIniWriteFile(handle), 0); }),
              "Error opening ini file " + name + "\n");
    fsIniReleaseFile(handle);
  }
  std::vector<int32_t> handles;
  for (int i = 0; i < 10; ++i) handles.push_back(fsIniNewFile(dir.file("f").c_str()));
  EXPECT_EQ(handles, (std::vector<int32_t>{1000, 1001, 1002, 1003, 1004, 1005, 1006, 1007,
                                            1008, 1009}));
  EXPECT_EQ(captureStderr([] { EXPECT_EQ(fsIniNewFile("eleventh.ini"), 0); }),
            "No more file handles available for eleventh.ini\n");
  fsIniReleaseFile(1003);
  fsIniReleaseFile(1007);
  EXPECT_EQ(fsIniNewFile("x"), 1003);
  EXPECT_EQ(fsIniNewFile("x"), 1007);
}

TEST(IniApi, GetSetAndWriteBack) {
  TempDir dir;
  std::string path = dir.file("a.ini");
  writeFile(path, "[Formula Files]\nelementFile = elements.tbl ; the table\nempty =\n"
                  "[Other]\nk = 1\n");
  int32_t handle = fsIniReadFile(path.c_str());
  EXPECT_EQ(valueOf(handle, "Formula Files", "elementFile"), "elements.tbl");
  EXPECT_EQ(captureStderr([&] {
              EXPECT_EQ(valueOf(handle, "formula files", "elementFile"), "<none:>");
              EXPECT_EQ(valueOf(handle, "Formula Files", "empty"), "<none:>");
              EXPECT_EQ(valueOf(handle, "Other", "k "), "<none:>");
            }),
            "Cannot find value for paragraph \"formula files\" topic \"elementFile\"\n"
            "Cannot find value for paragraph \"Formula Files\" topic \"empty\"\n"
            "Cannot find value for paragraph \"Other\" topic \"k \"\n");

  EXPECT_EQ(fsIniSetValue(handle, "Other", "k", "2  ", ""), 1);        // trailing blanks go
  // "new " is never found: the value and the comment each add a line "new".
  EXPECT_EQ(fsIniSetValue(handle, "Other", "new ", "a;b", " why "), 1);
  EXPECT_EQ(fsIniSetValue(handle, "Formula Files", "elementFile", "e2.tbl", ""), 1);  // comment kept
  EXPECT_EQ(fsIniSetValue(handle, "Other", "lead", "  \"x\"", ""), 1);  // written as given
  EXPECT_EQ(fsIniSetValue(handle, "New", "t", "   ", "note"), 1);  // blank value: none
  EXPECT_EQ(fsIniSetValue(handle, "", "lost", "v", ""), 1);  // a paragraph without name: unwritten
  EXPECT_EQ(fsIniWriteFile(handle), 1);
  EXPECT_EQ(readText(path),
            "[Formula Files]\nelementFile = e2.tbl\t; the table\nempty = \n"
            "[Other]\nk = 2\nnew = \"a;b\"\nnew = \t; why\nlead =   \"x\"\n[New]\nt = \t; note\n");
  // A successful write releases the handle.
  EXPECT_EQ(captureStderr([&] { EXPECT_EQ(valueOf(handle, "Other", "k"), "<none:>"); }), "");
}

TEST(IniApi, WalkQuirks) {
  TempDir dir;
  writeFile(dir.file("w.ini"),
            "[A]\na1 = 1\n; stops A's walk\na2 = 2\n"
            "[B]\nb = 1\nb = 2\nnovalue =\nc = 3\n\nd = 4\n"
            "[A]\nz = 9\n");
  int32_t handle = fsIniReadFile(dir.file("w.ini").c_str());
  EXPECT_EQ(captureStderr([&] {
              EXPECT_EQ(iniWalk(handle), "A|a1|1\nB|b|1\nB|b|1\nB|c|3\nA|a1|1\n");
            }),
            "Cannot find value for paragraph \"B\" topic \"novalue\"\n");
  // After the end, further calls give 0 until a new start.
  char p[64], t[64], v[64];
  EXPECT_EQ(fsIniNext(0, handle, p, t, v), 0);
  // A new start happens before the handle is tested.
  EXPECT_EQ(fsIniNext(1, 0, p, t, v), 0);
  EXPECT_EQ(fsIniNext(0, handle, p, t, v), 1);
  EXPECT_STREQ(t, "a1");
}

TEST(IniApi, CopyValueOfGivesTheFirstMatchSilently) {
  int32_t handle = fsIniNewFile("c.ini");
  fsIniSetValue(handle, "A", "x", "first", "");
  fsIniSetValue(handle, "A", "y", std::string(2000, 'l').c_str(), "");  // longer than any line
  fsIniSetValue(handle, "A", "empty", "", "a comment only");
  auto copied = [&](int32_t h, const char *paragraph, const char *topic) {
    char *copy = fskit::ini::copyValueOf(h, paragraph, topic);
    std::string text = copy != nullptr ? copy : "<null>";
    std::free(copy);
    return text;
  };
  EXPECT_EQ(captureStderr([&] {
              EXPECT_EQ(copied(handle, "A", "x"), "first");
              EXPECT_EQ(copied(handle, "A", "y"), std::string(2000, 'l'));
              EXPECT_EQ(copied(handle, "A", "empty"), "<null>");
              EXPECT_EQ(copied(handle, "A", "z"), "<null>");
              EXPECT_EQ(copied(handle, "B", "x"), "<null>");
              EXPECT_EQ(copied(handle, "A", nullptr), "<null>");
              EXPECT_EQ(copied(handle + 1, "A", "x"), "<null>");
            }),
            "");
}

#if defined(_WIN32)
TEST(IniApi, WriteReplacesTheFileWithAPlatformTextFile) {
  TempDir dir;
  ChangeDir here(dir.path());
  for (const std::string &path : {std::string("t.ini"), dir.file("t.ini")}) {
    writeFile(path, "[A]\nx = 1\n");
    EXPECT_EQ(setAndWrite(path, "2"), 1);
    EXPECT_EQ(readFile(path), "[A]\r\nx = 2\r\n") << path;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
  }
}
#else
TEST(IniApi, WriteTargetsLinksAndDevices) {
  TempDir dir;
  std::string path = dir.file("t.ini"), link = dir.file("link.ini"), other = dir.file("other.ini");
  writeFile(path, "[A]\nx = 1\n");
  chmod(path.c_str(), 0640);
  ASSERT_EQ(symlink("t.ini", link.c_str()), 0);

  // Through a symbolic link: the file it points to is replaced, with its mode; the link stays.
  EXPECT_EQ(setAndWrite(link, "2"), 1);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(readFile(path), "[A]\nx = 2\n");
  struct stat status;
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640u);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);

  // Used to rename a new file over the name written: the file's other name kept the old text.
  std::filesystem::create_hard_link(path, other);
  ASSERT_EQ(setAndWrite(path, "3"), 1);
  EXPECT_EQ(readFile(other), "[A]\nx = 3\n");
  EXPECT_TRUE(std::filesystem::equivalent(path, other));

  // A device: written in place, the error found at the close keeps the handle.
  int32_t handle = fsIniNewFile("/dev/full");
  fsIniSetValue(handle, "A", "x", "1", "");
  EXPECT_EQ(captureStderr([&] { EXPECT_EQ(fsIniWriteFile(handle), 0); }), "");
  EXPECT_EQ(valueOf(handle, "A", "x"), "1");

  // Used to give another's file (root's, shared for writing) to the process that wrote it.
  if (getuid() != 0) GTEST_SKIP() << "needs root to write as another user";
  std::string shared = dir.file("shared.ini");
  writeFile(shared, "[A]\nx = 1\n");
  ASSERT_EQ(chmod(dir.path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(shared.c_str(), 0666), 0);
  pid_t child = fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    if (setgid(65534) != 0 || setuid(65534) != 0) _exit(2);
    _exit(setAndWrite(shared, "3") == 1 ? 0 : 1);
  }
  int exit = 0;
  ASSERT_EQ(waitpid(child, &exit, 0), child);
  ASSERT_TRUE(WIFEXITED(exit) && WEXITSTATUS(exit) == 0) << exit;
  EXPECT_EQ(readFile(shared), "[A]\nx = 3\n");
  ASSERT_EQ(stat(shared.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, 0u);
  EXPECT_EQ(status.st_gid, 0u);
  EXPECT_EQ(status.st_mode & 07777, 0666u);
}
#endif

TEST(IniApi, WalkGoesOnWithTheCurrentParagraphNameInAnotherDocument) {
  TempDir dir;
  const std::string first = dir.file("a.ini"), second = dir.file("b.ini");
  writeFile(first, "[X]\na=1\nb=2\n[Y]\nq=5\n");
  writeFile(second, "[Z]\nz=0\n[X]\na=10\nb=20\nc=30\n");
  const struct {
    bool released, reread;  // what became of the walk's first document after its first value
    bool onFirst;           // the walk goes on with the first handle, not the second
    const char *expected;   // what it delivers
  } cases[] = {
      // Used to take the second document's paragraph at the same position (Z), not the X.
      {false, false, false, "X|b|20;X|c|30;X|a|10;X|b|20;X|c|30;"},
      // The first document's paragraph has no name any more: the walk takes the next one.
      {true, false, false, "X|a|10;X|b|20;X|c|30;"},
      // The same when a new document has taken the released one's slot.
      {true, true, false, "X|a|10;X|b|20;X|c|30;"},
      // Read again into the walk's own slot: another document, its paragraph looked up anew.
      {true, true, true, "Y|q|5;"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.expected);
    int32_t a = fsIniReadFile(first.c_str()), b = fsIniReadFile(second.c_str());
    char paragraph[64], topic[64], value[64];
    ASSERT_EQ(fsIniNext(1, a, paragraph, topic, value), 1);  // X a 1, as the rows take it
    if (c.released) fsIniReleaseFile(a);
    if (c.reread) {
      ASSERT_EQ(fsIniReadFile(first.c_str()), a);
    }
    EXPECT_EQ(captureStderr([&] { EXPECT_EQ(iniWalk(c.onFirst ? a : b, ";", false), c.expected); }),
              "");
    fsIniReleaseFile(a);
    fsIniReleaseFile(b);
  }
}

#if defined(__linux__)
TEST(IniApi, WriteGoesIntoAFileMountedInItsPlace) {
  TempDir dir;
  std::string path = dir.file("t.ini"), source = dir.file("source.ini");
  writeFile(path, "[A]\nx = 1\n");
  writeFile(source, "[A]\nx = 1\n");
  if (mount(source.c_str(), path.c_str(), "none", MS_BIND, nullptr) != 0)
    GTEST_SKIP() << "needs the right to mount a file";
  // Used to give 0 without a message, the file unwritten: nothing renames over a mount point.
  EXPECT_EQ(captureStderr([&] { EXPECT_EQ(setAndWrite(path, "2"), 1); }), "");
  EXPECT_EQ(readFile(path), "[A]\nx = 2\n");
  EXPECT_EQ(umount2(path.c_str(), 0), 0);
  EXPECT_EQ(readFile(source), "[A]\nx = 2\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);
}
#endif
