// SPDX-License-Identifier: MIT
// fsReadDir when memory runs out (the allocation-failure injector), on scripted
// directories (opendir, readdir and closedir wrapped) that give names as a case needs.
#include <fskit/files.h>
#include <gtest/gtest.h>

#include <dirent.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/alloc_fault.h"

namespace {

// The names every directory opened delivers, in this order.
std::vector<std::string> scriptedNames;
size_t nextName = 0;
char scriptedDirectory;  // its address stands for the open directory

// Before the records, a listing allocates its block, then the platform's
// search its own record and its copy of the pattern.
constexpr long kBlockAndSearch = 3;

// The next scripted name in `entry`, or null after the last.
template <typename Entry>
Entry *deliver() {
  static thread_local Entry entry;
  if (nextName >= scriptedNames.size()) return nullptr;
  std::snprintf(entry.d_name, sizeof entry.d_name, "%s", scriptedNames[nextName++].c_str());
  return &entry;
}

}  // namespace

extern "C" {

DIR *__wrap_opendir(const char *) {
  nextName = 0;
  return reinterpret_cast<DIR *>(&scriptedDirectory);
}

dirent *__wrap_readdir(DIR *) { return deliver<dirent>(); }
// A 32-bit system with 64-bit file offsets calls readdir64.
dirent64 *__wrap_readdir64(DIR *) { return deliver<dirent64>(); }

int __wrap_closedir(DIR *) { return 0; }

}  // extern "C"

TEST(ReadDirScripted, ARecordWhoseTextCannotBeCopiedStaysInTheListing) {
  scriptedNames = {"a.x", "b.x", "c.x"};
  FsFileSpec *list = nullptr;
  int32_t count = -1;
  int textRuns = 0;
  fskit::test::forEachSingleAllocationFailure(
      [&] { count = fsReadDir("C:\\data", "*", ".x", &list); },
      [&](long k, bool refused) {
        if (refused && k <= kBlockAndSearch) {  // nothing to list into, or no search
          EXPECT_EQ(count, 0);
          EXPECT_EQ(list == nullptr, k == 1);
          fsReadDirFree(0, &list);
          return;
        }
        // A refused copy used to throw the whole listing away (0, list null);
        // the records are all there, the one text that failed is null.
        ASSERT_EQ(count, 3) << k;
        int missing = 0;
        for (int32_t i = 0; i < count; ++i)
          for (const char *text : {list[i].drive, list[i].directory, list[i].name, list[i].extension})
            missing += text == nullptr ? 1 : 0;
        EXPECT_EQ(missing, refused ? 1 : 0) << k;
        textRuns += refused ? 1 : 0;
        fsReadDirFree(count, &list);
        EXPECT_EQ(list, nullptr);
      });
  EXPECT_EQ(textRuns, 3 * 4);
}

TEST(ReadDirScripted, AFullListGrowsForANameItThenSkips) {
  // The names after 100 listed ones, and the count with the growth refused. The block used to grow
  // only for a record to be added, so a skipped name after the 100th did not need it.
  const std::pair<std::vector<std::string>, int32_t> cases[] = {
      {{".."}, 0}, {{"next"}, 0}, {{}, 100}};
  for (const auto &[after, expected] : cases) {
    scriptedNames.clear();
    for (int i = 0; i < 100; ++i) scriptedNames.push_back("f" + std::to_string(i) + ".raw");
    scriptedNames.insert(scriptedNames.end(), after.begin(), after.end());
    FsFileSpec *list = nullptr;
    // The block, the search and four texts a record come first; the growth next.
    fskit::test::failOnlyAllocation(kBlockAndSearch + 100 * 4 + 1);
    int32_t count = fsReadDir("", "*", nullptr, &list);
    fskit::test::failAllocationFrom(0);
    EXPECT_EQ(count, expected) << after.size();
    EXPECT_EQ(list == nullptr, expected == 0) << after.size();
    fsReadDirFree(count, &list);
  }
}

