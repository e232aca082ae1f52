// SPDX-License-Identifier: MIT
// Cases that once went wrong in the INI family, one line each on what did.
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

#include <filesystem>
#include <string>

#include "tests/support/test_support.h"

using namespace fskit::test;

TEST(IniRegression, WalkGoesOnWithTheCurrentParagraphNameInAnotherDocument) {
  TempDir dir;
  writeFile(dir.file("a.ini"), "[X]\na=1\nb=2\n[Y]\nq=5\n");
  writeFile(dir.file("b.ini"), "[Z]\nz=0\n[X]\na=10\nb=20\nc=30\n");
  enum class First { kKept, kReleased, kReopened };  // the walk's first document
  struct Case {
    First first;
    const char *expected;  // what the walk delivers on the second handle
  } cases[] = {
      // Used to take the second document's paragraph at the same position
      // (Z) instead of its paragraph named X, at the line the walk stood on.
      {First::kKept, "X|b|20;X|c|30;X|a|10;X|b|20;X|c|30;"},
      // Right before, and kept so: with the first document gone its paragraph
      // has no name any more, and the walk goes on with the next paragraph,
      // reading nothing released.
      {First::kReleased, "X|a|10;X|b|20;X|c|30;"},
      // The same when a new document has taken the released one's slot.
      {First::kReopened, "X|a|10;X|b|20;X|c|30;"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.expected);
    int32_t a = fsIniReadFile(dir.file("a.ini").c_str());
    int32_t b = fsIniReadFile(dir.file("b.ini").c_str());
    ASSERT_NE(a, 0);
    ASSERT_NE(b, 0);
    char paragraph[64], topic[64], value[64];
    ASSERT_EQ(fsIniNext(1, a, paragraph, topic, value), 1);
    EXPECT_EQ(std::string(paragraph) + "|" + topic + "|" + value, "X|a|1");
    if (c.first != First::kKept) fsIniReleaseFile(a);
    if (c.first == First::kReopened) {
      ASSERT_EQ(fsIniReadFile(dir.file("a.ini").c_str()), a);
    }
    // Every value the walk delivers from here on, "paragraph|topic|value;".
    std::string delivered;
    EXPECT_EQ(captureStderr([&] {
                while (fsIniNext(0, b, paragraph, topic, value) == 1)
                  delivered += std::string(paragraph) + "|" + topic + "|" + value + ";";
              }),
              "");
    EXPECT_EQ(delivered, c.expected);
    fsIniReleaseFile(a);
    fsIniReleaseFile(b);
  }
}

TEST(IniRegression, WalkOnAHandleOpenedAgainGoesOnWithTheNextParagraph) {
  // The walk keeps the paragraph it found for its current name; a document
  // read again into the same slot is another document, whose paragraph must
  // be looked up anew (here: the old one has no name any more).
  TempDir dir;
  writeFile(dir.file("a.ini"), "[X]\na=1\nb=2\n[Y]\nq=5\n");
  int32_t a = fsIniReadFile(dir.file("a.ini").c_str());
  ASSERT_NE(a, 0);
  char paragraph[64], topic[64], value[64];
  ASSERT_EQ(fsIniNext(1, a, paragraph, topic, value), 1);
  fsIniReleaseFile(a);
  ASSERT_EQ(fsIniReadFile(dir.file("a.ini").c_str()), a);
  std::string delivered;
  while (fsIniNext(0, a, paragraph, topic, value) == 1)
    delivered += std::string(paragraph) + "|" + topic + "|" + value + ";";
  EXPECT_EQ(delivered, "Y|q|5;");
  fsIniReleaseFile(a);
}

TEST(IniRegression, ADirectoryIsAFileThatCannotBeOpened) {
  TempDir dir;
  std::string name = dir.file("settings");
  writeFile(dir.file("plain.ini"), "[A]\nx=1\n");
  ASSERT_TRUE(std::filesystem::create_directory(name));
  int32_t handle = -1;
  // Used to give a handle of an empty document: the directory opened for
  // reading, and only its first read failed.
  EXPECT_EQ(captureStderr([&] { handle = fsIniReadFile(name.c_str()); }),
            "Error opening ini file " + name + "\n");
  EXPECT_EQ(handle, 0);
  // The slot stays free for the next document.
  int32_t plain = fsIniReadFile(dir.file("plain.ini").c_str());
  EXPECT_EQ(plain, 1000);
  fsIniReleaseFile(plain);
}

#if !defined(_WIN32)
TEST(IniRegression, WriteKeepsTheFileItselfWhereANewOneWouldDiffer) {
  TempDir dir;
  std::string path = dir.file("t.ini"), other = dir.file("other.ini");
  writeFile(path, "[A]\nx = 1\n");
  std::filesystem::create_hard_link(path, other);
  // Used to rename a new file over the name written, so the file's other
  // name went on holding the old text.
  int32_t handle = fsIniReadFile(path.c_str());
  fsIniSetValue(handle, "A", "x", "2", "");
  ASSERT_EQ(fsIniWriteFile(handle), 1);
  EXPECT_EQ(readFile(path), "[A]\nx = 2\n");
  EXPECT_EQ(readFile(other), "[A]\nx = 2\n");
  EXPECT_TRUE(std::filesystem::equivalent(path, other));

  // Used to give another's file (here root's, shared for writing) to the
  // process that wrote it, whose new file could not be given its owner back.
  if (getuid() != 0) GTEST_SKIP() << "needs root to write as another user";
  std::string shared = dir.file("shared.ini");
  writeFile(shared, "[A]\nx = 1\n");
  ASSERT_EQ(chmod(dir.path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(shared.c_str(), 0666), 0);
  pid_t child = fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    if (setgid(65534) != 0 || setuid(65534) != 0) _exit(2);
    int32_t mine = fsIniReadFile(shared.c_str());
    fsIniSetValue(mine, "A", "x", "3", "");
    _exit(fsIniWriteFile(mine) == 1 ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  ASSERT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(readFile(shared), "[A]\nx = 3\n");
  struct stat after;
  ASSERT_EQ(stat(shared.c_str(), &after), 0);
  EXPECT_EQ(after.st_uid, 0u);
  EXPECT_EQ(after.st_gid, 0u);
  EXPECT_EQ(after.st_mode & 07777, 0666u);
}
#endif

#if defined(__linux__)
TEST(IniRegression, WriteGoesIntoAFileMountedInItsPlace) {
  TempDir dir;
  std::string path = dir.file("t.ini"), source = dir.file("source.ini");
  writeFile(path, "[A]\nx = 1\n");
  writeFile(source, "[A]\nx = 1\n");
  if (mount(source.c_str(), path.c_str(), "none", MS_BIND, nullptr) != 0)
    GTEST_SKIP() << "needs the right to mount a file";
  // Used to give 0 without a message, the file unwritten: a new file cannot
  // be renamed over a mount point, though the file itself can be written.
  int32_t handle = fsIniReadFile(path.c_str());
  fsIniSetValue(handle, "A", "x", "2", "");
  EXPECT_EQ(captureStderr([&] { EXPECT_EQ(fsIniWriteFile(handle), 1); }), "");
  EXPECT_EQ(readFile(path), "[A]\nx = 2\n");
  EXPECT_EQ(umount2(path.c_str(), 0), 0);
  EXPECT_EQ(readFile(source), "[A]\nx = 2\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);
  fsIniReleaseFile(handle);
}
#endif
