// SPDX-License-Identifier: MIT
// Directory listing, creation and removal, and the directory services beneath
// them, on real temporary directories; fskit ls.
#include <fskit/files.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#if !defined(_WIN32)
#include <unistd.h>
#endif

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "tests/support/test_support.h"

using fskit::test::runTool;
using fskit::test::TempDir;
using fskit::test::writeFile;
using Records = std::vector<std::string>;

namespace {

// Windows matches names without regard to case; the POSIX side does not.
#if defined(_WIN32)
constexpr bool kMatchIgnoresCase = true;
#else
constexpr bool kMatchIgnoresCase = false;
#endif

std::string withBackslashes(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

// The directory and drive parts of the records of a listing of `path` + "\"
// joined by `separator`: the drive is the text up to the first colon, which
// only a Windows path ("C:\...") has.
std::string partsOf(const std::string &path, const std::string &separator = "|") {
  size_t drive = path.find(':') + 1;  // 0 when there is none
  return path.substr(drive) + "\\" + separator + path.substr(0, drive);
}

// The records as "name|extension|directory|drive", sorted.
Records list(const std::string &directory, const std::string &namePattern,
             const char *extPattern = nullptr) {
  FsFileSpec *found = nullptr;
  int32_t count = fsReadDir(directory.c_str(), namePattern.c_str(), extPattern, &found);
  Records records;
  for (int32_t i = 0; i < count; ++i)
    records.push_back(std::string(found[i].name) + "|" + found[i].extension + "|" +
                      found[i].directory + "|" + found[i].drive);
  std::sort(records.begin(), records.end());
  EXPECT_NE(found, nullptr);  // an empty block when nothing was found
  fsReadDirFree(count, &found);
  EXPECT_EQ(found, nullptr);
  return records;
}

}  // namespace

TEST(ReadDir, PatternsSelectNamesSplitAtTheFirstDot) {
  TempDir dir;
  for (const char *name : {"a.raw", "b.RAW", "notes", ".hidden", "run.tar.gz"}) writeFile(dir.file(name), "");
  std::filesystem::create_directory(dir.file("sub.d"));
  std::string at = "|" + partsOf(dir.path());
  Records raw = {"a|raw" + at};
  if (kMatchIgnoresCase) raw.push_back("b|RAW" + at);
  struct Case { const char *name, *ext; Records records; };
  const Case cases[] = {
      {"*", nullptr, {"a|raw" + at, "b|RAW" + at, "notes|" + at, "run|tar.gz" + at, "sub|d" + at}},
      {"*", ".raw", raw},
      {"?", "", {"a|raw" + at, "b|RAW" + at}},
      {"n*", nullptr, {"notes|" + at}},
      {"*.tar", ".gz", {"run|tar.gz" + at}},
      {"zzz", nullptr, {}},
  };
  for (const Case &c : cases) EXPECT_EQ(list(dir.path(), c.name, c.ext), c.records) << c.name;
  // Backslashes separate as well as slashes; the records keep the text given.
  std::string backslashed = withBackslashes(dir.path());
  EXPECT_EQ(list(backslashed + "\\", "a", ".raw"), Records{"a|raw|" + partsOf(backslashed)});
  fskit::test::ChangeDir here(dir.path());
  Records rawHere = {"a|raw||"};
  if (kMatchIgnoresCase) rawHere.push_back("b|RAW||");
  EXPECT_EQ(list("", "*", ".raw"), rawHere);
}

TEST(ReadDir, GrowsPastAHundredRecordsAndKeepsToItsLimits) {
  TempDir dir;
  for (int i = 0; i < 201; ++i) writeFile(dir.file("f" + std::to_string(i) + ".dat"), "");
  Records records = list(dir.path(), "f*", ".dat");
  EXPECT_EQ(std::set<std::string>(records.begin(), records.end()).size(), 201u);
  EXPECT_EQ(list(dir.path(), "f1??").size(), 100u);

  TempDir other;
  writeFile(other.file(std::string(100, 'b') + "." + std::string(100, 'e')), "");
  EXPECT_EQ(list(other.path(), "*"),
            Records{std::string(79, 'b') + "|" + std::string(79, 'e') + "|" + partsOf(other.path())});
  for (const std::string &directory :  // too long; not a directory; missing
       {std::string(80, 'd') + ":", other.path() + std::string(300, '/'),
        dir.file("f1.dat"), dir.file("missing")})
    EXPECT_EQ(list(directory, "*"), Records{}) << directory;
  EXPECT_EQ(list(dir.path(), std::string(300, '*')), Records{});
  EXPECT_EQ(fsReadDir(dir.path().c_str(), "*", nullptr, nullptr), 0);
#if !defined(_WIN32)
  if (geteuid() != 0) {  // permissions do not stop root
    chmod(dir.path().c_str(), 0);
    EXPECT_EQ(list(dir.path(), "*"), Records{});
    chmod(dir.path().c_str(), 0700);
  }
#endif
}

TEST(Directories, MakeAndRemove) {
  TempDir dir;
  std::string made = dir.file("made"), inner = withBackslashes(dir.file("made/inner"));
  EXPECT_EQ(fsMakeDir(made.c_str()), 1);
  EXPECT_EQ(fsMakeDir(made.c_str()), 1);  // already there
  EXPECT_EQ(fsMakeDir(inner.c_str()), 1);
  EXPECT_TRUE(std::filesystem::is_directory(dir.file("made/inner")));
  EXPECT_EQ(fsMakeDir(dir.file("missing/child").c_str()), 0);
  writeFile(dir.file("plain"), "");
  EXPECT_EQ(fsMakeDir(dir.file("plain").c_str()), 0);

  EXPECT_EQ(fsRemoveDirectory(made.c_str()), 0);  // not empty
  EXPECT_EQ(fsRemoveDirectory(inner.c_str()) + fsRemoveDirectory(made.c_str()), 2);
  EXPECT_FALSE(fskit::test::fileExists(made));
  EXPECT_EQ(fsRemoveDirectory(made.c_str()), 0);
  EXPECT_EQ(fsRemoveDirectory((dir.path() + std::string(300, '/')).c_str()), 0);
}

TEST(DirectoryServices, SearchMatchesTheLastComponentAndSurvivesAVanishingDirectory) {
  namespace platform = fskit::platform;
  TempDir dir;
  for (const char *name : {"abc", "abc.txt", "a.b.c", "ABD.TXT", "x"}) writeFile(dir.file(name), "");
  auto search = [&](const std::string &pattern) {
    platform::FindData data{};
    std::set<std::string> found;
    platform::SearchHandle handle = platform::FindFirstFileSA(pattern.c_str(), &data);
    if (handle == platform::kNoSearch) return found;
    do found.insert(data.cFileName);
    while (platform::FindNextFileSA(handle, &data));
    platform::FindCloseS(handle);
    return found;
  };
  using Names = std::set<std::string>;
  std::string in = withBackslashes(dir.path()) + "\\";
  Names upperTxt = {"ABD.TXT"};
  if (kMatchIgnoresCase) upperTxt.insert("abc.txt");
  EXPECT_EQ(search(in + "a*c"), (Names{"abc", "a.b.c"}));
  EXPECT_EQ(search(in + "a?c.*"), (Names{"abc", "abc.txt"}));
  EXPECT_EQ(search(in + "*.TXT"), upperTxt);
  EXPECT_EQ(search(in + "*.*").size(), 7u);  // with . and ..
  EXPECT_EQ(search(in + "nothing"), Names{});

  platform::FindData data{};
  platform::SearchHandle handle = platform::FindFirstFileSA((dir.path() + "/*").c_str(), &data);
  ASSERT_NE(handle, platform::kNoSearch);
  std::error_code refused;  // Windows refuses while the search is open
  std::filesystem::remove_all(dir.path(), refused);
  while (platform::FindNextFileSA(handle, &data)) {
  }
  EXPECT_NE(platform::FindCloseS(handle), 0);
}

TEST(LsTool, SortedPathsWithDirectoriesMarked) {
  TempDir dir;
  std::filesystem::create_directory(dir.file("sub"));
  std::filesystem::create_directory(dir.file("b.d"));
  for (const char *name : {"b.txt", "a.raw", "Z", ".hidden"}) writeFile(dir.file(name), "");
  auto listed = runTool({"ls", "."}, "", dir.path());
  EXPECT_EQ(listed.status, 0) << listed.err;
  EXPECT_EQ(listed.out,
            "path\tname\textension\n./Z\tZ\t\n./a.raw\ta\traw\n./b.d/\tb\td\n"
            "./b.txt\tb\ttxt\n./sub/\tsub\t\n");
  // The directory as given, one '/' added; patterns still choose.
  EXPECT_EQ(runTool({"ls", "./", "b"}, "", dir.path()).out,
            "path\tname\textension\n./b.d/\tb\td\n./b.txt\tb\ttxt\n");
  std::string jsonPath;  // JSON escapes the backslashes of a Windows path
  for (char c : dir.path()) jsonPath += c == '\\' ? std::string("\\\\") : std::string(1, c);
  EXPECT_EQ(runTool({"ls", "--json", dir.path(), "s*"}).out,
            "{\"path\":\"" + jsonPath + "/sub/\",\"name\":\"sub\",\"extension\":\"\"}\n");
  auto missing = runTool({"ls", "--json", dir.file("none")});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.out, "");
  EXPECT_EQ(missing.err, "fskit ls: cannot read directory " + dir.file("none") +
                             ": No such file or directory\n");
}
