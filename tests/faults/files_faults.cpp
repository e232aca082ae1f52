// The files family's allocating functions under allocation failure.
#include <fskit/files.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/alloc_fault.h"
#include "tests/support/test_support.h"

using fskit::test::forEachAllocationFailure;

TEST(FilesFaults, ListingGivesAllRecordsOrNoneAndLeaksNothing) {
  fskit::test::TempDir dir;
  for (int i = 0; i < 150; ++i) fskit::test::writeFile(dir.file(std::to_string(i) + ".x"), "");
  FsFileSpec *list = nullptr;
  int32_t count = -1;
  long runs = forEachAllocationFailure(
      [&] { count = fsReadDir(dir.path().c_str(), "*", nullptr, &list); },
      [&](long k, bool refused) {
        EXPECT_EQ(count, refused ? 0 : 150) << k;
        if (k == 1) {
          EXPECT_EQ(list, nullptr);  // the first block itself
        }
        fsReadDirFree(count, &list);
      });
  // The first block, the search, growth and four texts per record.
  EXPECT_GT(runs, 150 * 4);
}

TEST(FilesFaults, OpenReportsAMissingNameCopy) {
  fskit::test::TempDir dir;
  std::string path = dir.file("f");
  FsFile file{};
  char error[128];
  int32_t opened = -1;
  forEachAllocationFailure([&] { opened = fsFileOpen(path.c_str(), "w", &file, error); },
                           [&](long, bool refused) {
                             EXPECT_EQ(opened, refused ? 0 : 1);
                             if (refused) {
                               EXPECT_STREQ(error, "12 Not enough memory");
                               EXPECT_EQ(file.stream, nullptr);
                               EXPECT_EQ(file.name, nullptr);
                             }
                             fsFileClose(&file, nullptr);
                           });
}
