// Directory listing, directory creation and removal, and the directory
// services beneath them, on real temporary directories.
#include <fskit/files.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "tests/support/test_support.h"

using fskit::test::TempDir;
using fskit::test::writeFile;

namespace {

std::string withBackslashes(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

struct Listed {
  int32_t count = 0;
  std::vector<std::string> records;  // "name|extension|directory|drive", sorted
};

Listed list(const std::string &directory, const char *namePattern, const char *extPattern) {
  FsFileSpec *records = nullptr;
  Listed listed;
  listed.count = fsReadDir(directory.c_str(), namePattern, extPattern, &records);
  for (int32_t i = 0; i < listed.count; ++i)
    listed.records.push_back(std::string(records[i].name) + "|" + records[i].extension + "|" +
                             records[i].directory + "|" + records[i].drive);
  std::sort(listed.records.begin(), listed.records.end());
  EXPECT_NE(records, nullptr);
  fsReadDirFree(listed.count, &records);
  EXPECT_EQ(records, nullptr);
  return listed;
}

// A directory holding a.raw, b.RAW, notes, .hidden, run.tar.gz and sub.d/.
class Listing : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char *name : {"a.raw", "b.RAW", "notes", ".hidden", "run.tar.gz"})
      writeFile(dir.file(name), "x");
    mkdir(dir.file("sub.d").c_str(), 0755);
  }
  // The records' names and extensions alone.
  std::vector<std::string> names(const char *namePattern, const char *extPattern) {
    std::vector<std::string> result;
    for (const std::string &record : list(dir.path(), namePattern, extPattern).records)
      result.push_back(record.substr(0, record.find('|', record.find('|') + 1)));
    return result;
  }
  TempDir dir;
};

using Names = std::vector<std::string>;

}  // namespace

TEST_F(Listing, PatternsSelectNamesSplitAtTheFirstDot) {
  EXPECT_EQ(names("*", nullptr), (Names{"a|raw", "b|RAW", "notes|", "run|tar.gz", "sub|d"}));
  EXPECT_EQ(names("*", ""), names("*", ".*"));
  EXPECT_EQ(names("*", ".raw"), (Names{"a|raw"}));
  EXPECT_EQ(names("?", nullptr), (Names{"a|raw", "b|RAW"}));
  EXPECT_EQ(names("n*", nullptr), (Names{"notes|"}));
  EXPECT_EQ(names("*", ".*z"), (Names{"run|tar.gz"}));
  EXPECT_EQ(names("*.tar", ".gz"), (Names{"run|tar.gz"}));
  EXPECT_EQ(names("*", ".d"), (Names{"sub|d"}));
  EXPECT_EQ(names("zzz", nullptr), Names{});
}

TEST_F(Listing, DriveAndDirectoryAreThoseOfTheSearch) {
  std::string slashed = dir.path(), backslashed = withBackslashes(dir.path());
  for (const std::string &directory : {slashed, backslashed, backslashed + "\\"}) {
    Listed listed = list(directory, "a", ".raw");
    ASSERT_EQ(listed.count, 1) << directory;
    std::string part = directory.back() == '\\' ? directory : directory + "\\";
    EXPECT_EQ(listed.records[0], "a|raw|" + part + "|") << directory;
  }
  fskit::test::ChangeDir here(dir.path());
  EXPECT_EQ(list("", "*", ".raw").records, (Names{"a|raw||"}));
  EXPECT_EQ(list("sub.d", "*", nullptr).count, 0);
}

TEST(ReadDir, GrowsPastEachHundredRecords) {
  TempDir dir;
  for (int i = 0; i < 201; ++i) writeFile(dir.file("f" + std::to_string(i) + ".dat"), "");
  Listed listed = list(dir.path(), "f*", ".dat");
  EXPECT_EQ(listed.count, 201);
  EXPECT_EQ(std::set<std::string>(listed.records.begin(), listed.records.end()).size(), 201u);
  EXPECT_EQ(list(dir.path(), "f1??", nullptr).count, 100);
}

TEST(ReadDir, BeyondTheWorkingLimitsAndUnreadableDirectories) {
  TempDir dir;
  std::string base(100, 'b'), extension(100, 'e');
  writeFile(dir.file(base + "." + extension), "");
  EXPECT_EQ(list(dir.path(), "*", nullptr).records,
            (Names{std::string(79, 'b') + "|" + std::string(79, 'e') + "|" + dir.path() + "\\|"}));
  // A too long drive, directory or pattern finds nothing.
  EXPECT_EQ(list(std::string(80, 'd') + ":", "*", nullptr).count, 0);
  std::string longDirectory = dir.path() + std::string(300, '/');
  EXPECT_EQ(list(longDirectory, "*", nullptr).count, 0);
  EXPECT_EQ(list(dir.path(), std::string(300, '*').c_str(), nullptr).count, 0);
  // Not a directory, or missing.
  EXPECT_EQ(list(dir.file(base + "." + extension), "*", nullptr).count, 0);
  EXPECT_EQ(list(dir.file("missing"), "*", nullptr).count, 0);
  EXPECT_EQ(fsReadDir(dir.path().c_str(), "*", nullptr, nullptr), 0);
  FsFileSpec *records = nullptr;
  EXPECT_EQ(fsReadDir(nullptr, nullptr, nullptr, &records), 0);
  fsReadDirFree(0, &records);
  if (geteuid() != 0) {  // permissions do not stop root
    chmod(dir.path().c_str(), 0);
    EXPECT_EQ(list(dir.path(), "*", nullptr).count, 0);
    chmod(dir.path().c_str(), 0700);
  }
}

TEST(ReadDir, ListFreeReleasesRecordsAndBlock) {
  // The leak checker of the sanitizer build shows that everything is released.
  FsFileSpec *list = static_cast<FsFileSpec *>(malloc(2 * sizeof(FsFileSpec)));
  list[0] = {strdup("C:"), strdup("\\d\\"), strdup("a"), nullptr};
  list[1] = {strdup(""), strdup(""), strdup("b"), strdup("x")};
  fsFileSpecListFree(2, &list);
  EXPECT_EQ(list, nullptr);
  fsFileSpecListFree(2, &list);
  fsFileSpecListFree(2, nullptr);
  list = static_cast<FsFileSpec *>(malloc(sizeof(FsFileSpec)));
  fsReadDirFree(-1, &list);
  EXPECT_EQ(list, nullptr);
}

TEST(Directories, MakeAndRemove) {
  TempDir dir;
  std::string made = dir.file("made");
  EXPECT_EQ(fsMakeDir(made.c_str()), 1);
  EXPECT_TRUE(std::filesystem::is_directory(made));
  EXPECT_EQ(fsMakeDir(made.c_str()), 1);  // already there
  EXPECT_EQ(fsMakeDir(withBackslashes(dir.file("made/inner")).c_str()), 1);
  EXPECT_TRUE(std::filesystem::is_directory(dir.file("made/inner")));
  EXPECT_EQ(fsMakeDir(dir.file("missing/child").c_str()), 0);
  writeFile(dir.file("plain"), "");
  EXPECT_EQ(fsMakeDir(dir.file("plain").c_str()), 0);
  EXPECT_EQ(fsMakeDir(nullptr), 0);

  EXPECT_EQ(fsRemoveDirectory(made.c_str()), 0);  // not empty
  EXPECT_EQ(fsRemoveDirectory(withBackslashes(dir.file("made/inner")).c_str()), 1);
  EXPECT_EQ(fsRemoveDirectory(made.c_str()), 1);
  EXPECT_FALSE(fskit::test::fileExists(made));
  EXPECT_EQ(fsRemoveDirectory(made.c_str()), 0);
  EXPECT_EQ(fsRemoveDirectory((dir.path() + std::string(300, '/')).c_str()), 0);
  EXPECT_EQ(fsRemoveDirectory(nullptr), 0);
}

TEST(DirectoryServices, SearchMatchesTheLastComponentAndSurvivesAVanishingDirectory) {
  namespace platform = fskit::platform;
  TempDir dir;
  for (const char *name : {"abc", "abc.txt", "a.b.c", "ABC.TXT", "x"}) writeFile(dir.file(name), "");
  struct Case { const char *pattern; std::set<std::string> names; };
  const Case cases[] = {
      {"a*c", {"abc", "a.b.c"}},
      {"*.*", {".", "..", "abc", "abc.txt", "a.b.c", "ABC.TXT", "x"}},
      {"a?c.*", {"abc", "abc.txt"}},
      {"*c", {"abc", "a.b.c"}},
      {"*.TXT", {"ABC.TXT"}},
      {"*.b.*", {"a.b.c"}},
      {"nothing", {}},
  };
  for (const Case &c : cases) {
    platform::FindData data{};
    std::set<std::string> found;
    std::string pattern = withBackslashes(dir.path()) + "\\" + c.pattern;
    platform::SearchHandle search = platform::FindFirstFileSA(pattern.c_str(), &data);
    if (search != platform::kNoSearch) {
      do found.insert(data.cFileName);
      while (platform::FindNextFileSA(search, &data));
      platform::FindCloseS(search);
    }
    EXPECT_EQ(found, c.names) << c.pattern;
  }
  // The directory goes away in the middle of a search: the search just ends.
  platform::FindData data{};
  platform::SearchHandle search = platform::FindFirstFileSA((dir.path() + "/*").c_str(), &data);
  ASSERT_NE(search, platform::kNoSearch);
  std::filesystem::remove_all(dir.path());
  while (platform::FindNextFileSA(search, &data)) {
  }
  EXPECT_NE(platform::FindCloseS(search), 0);
}

TEST(LsCommand, PrintsOneRecordPerLine) {
  TempDir dir;
  writeFile(dir.file("a.raw"), "");
  writeFile(dir.file("b.txt"), "");
  auto listed = fskit::test::runTool({"ls", dir.path(), "*", ".raw"});
  EXPECT_EQ(listed.status, 0);
  EXPECT_EQ(listed.out, "a\traw\t" + dir.path() + "\\\t\n");
  std::string backslashed = withBackslashes(dir.path());
  auto all = fskit::test::runTool({"ls", backslashed});
  std::string a = "a\traw\t" + backslashed + "\\\t\n", b = "b\ttxt\t" + backslashed + "\\\t\n";
  EXPECT_TRUE(all.out == a + b || all.out == b + a) << all.out;
  EXPECT_EQ(fskit::test::runTool({"ls"}).status, 2);
  EXPECT_EQ(fskit::test::runTool({"ls", "a", "b", "c", "d"}).status, 2);
}
