// SPDX-License-Identifier: MIT
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
  int grewNot = 0, textsMissing = 0;
  long runs = forEachAllocationFailure(
      [&] { count = fsReadDir(dir.path().c_str(), "*", nullptr, &list); },
      [&](long k, bool refused) {
        if (!refused || k > 3) {  // 1: the block; 2, 3: the search
          // Refused growth gives nothing; refused texts are null in full records.
          EXPECT_TRUE(count == 150 || (refused && count == 0 && list == nullptr)) << k;
          if (count == 0) ++grewNot;
          for (int32_t i = 0; i < count; ++i)
            if (list[i].name == nullptr || list[i].extension == nullptr) ++textsMissing;
        } else {
          EXPECT_EQ(count, 0) << k;
          EXPECT_EQ(list == nullptr, k == 1) << k;
        }
        fsReadDirFree(count, &list);
      });
  EXPECT_GT(runs, 150 * 4);  // the block, the search, growth, four texts a record
  EXPECT_GT(grewNot, 0);
  EXPECT_GT(textsMissing, 0);

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
