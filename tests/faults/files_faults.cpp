// The files family's allocating functions under allocation failure.
#include <fskit/files.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/alloc_fault.h"
#include "tests/support/test_support.h"

using fskit::test::forEachAllocationFailure;

TEST(FilesFaults, ListingAndOpenFailCleanly) {
  fskit::test::TempDir dir;
  for (int i = 0; i < 150; ++i) fskit::test::writeFile(dir.file(std::to_string(i) + ".x"), "");
  FsFileSpec *list = nullptr;
  int32_t count = -1;
  long runs = forEachAllocationFailure(
      [&] { count = fsReadDir(dir.path().c_str(), "*", nullptr, &list); },
      [&](long k, bool refused) {
        EXPECT_EQ(count, refused ? 0 : 150) << k;
        EXPECT_EQ(list == nullptr, k == 1 || (refused && k > 2)) << k;  // 2: the search
        fsReadDirFree(count, &list);
      });
  EXPECT_GT(runs, 150 * 4);  // the block, the search, growth, four texts a record

  FsFile file{};
  std::string path = dir.file("f");
  char error[128];
  int32_t opened = -1;
  forEachAllocationFailure(
      [&] { opened = fsFileOpen(path.c_str(), "w", &file, error); },
      [&](long, bool refused) {
        EXPECT_EQ(opened, refused ? 0 : 1);
        if (refused) {
          EXPECT_EQ(error + std::string(file.name ? " name" : ""), "12 Not enough memory");
        }
        fsFileClose(&file, nullptr);
      });
}
