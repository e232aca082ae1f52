// SPDX-License-Identifier: MIT
// The command-line and tag-table functions under allocation failure.
#include <fskit/cmdline.h>
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/alloc_fault.h"

using fskit::test::failAllocationFrom;
using fskit::test::forEachAllocationFailure;

TEST(CmdlineFaults, JoinedLineEndsTheProcessOrGivesNull) {
  char *line = nullptr;
  char prog[] = "prog", a[] = "a";
  char *argv[] = {prog, a};
  forEachAllocationFailure([&] { line = kwaCmdLnStr(1, argv, nullptr); },
                           [&](long, bool refused) {
                             EXPECT_EQ(line == nullptr, refused);
                             fsFree(&line);
                           });
  EXPECT_EXIT(
      {
        failAllocationFrom(1);
        kwaCmdLnStr(2, argv, nullptr);
      },
      testing::ExitedWithCode(1), "^Out of memory in kwaCmdLnStr\\(\\)\n$");
}

TEST(CmdlineFaults, ArrayKeepsNewSizesWithoutBuffer) {
  KwaArray array{7, 0, 0, 0, nullptr};
  ASSERT_EQ(kwaArrayAlloc(&array, 4, 8), 1);
  int32_t result = -1;
  forEachAllocationFailure([&] { result = kwaArrayAlloc(&array, 10, 2); },
                           [&](long, bool refused) {
                             EXPECT_EQ(result, refused ? 0 : 1);
                             EXPECT_EQ(array.data == nullptr, refused);
                             EXPECT_EQ((std::vector{array.count, array.capacity, int32_t(array.elemSize)}),
                                       (std::vector{10, 10, 2}));
                             EXPECT_EQ(array.user, 7);
                             if (refused) array.capacity = 4;  // ask again for more than it has
                           });
  std::free(array.data);
}

TEST(CmdlineFaults, TableThatCannotGrowIsReleased) {
  // Ten records fill the first block; the eleventh line needs a second. Every
  // failure leaves either a null table (the old block released, which the
  // leak checkers confirm) or all eleven records.
  std::string file;
  for (int i = 0; i < 11; ++i) file += "t" + std::to_string(i) + " label " + std::to_string(i) + "\n";
  int32_t count = 0, capacity = 0, result = 0;
  KwaTagEntry *table = nullptr;
  long runs = forEachAllocationFailure(
      [&] {
        count = capacity = 0;
        std::FILE *stream = fmemopen(file.data(), file.size(), "r");
        result = kwaReadTags(stream, 0, &count, &capacity, &table);
        std::fclose(stream);
      },
      [&](long k, bool refused) {
        EXPECT_EQ(result, 1);
        EXPECT_EQ(table == nullptr, refused);
        EXPECT_EQ(count, refused ? 10 * (k - 1) : 11);
        std::free(table);
        table = nullptr;
      });
  EXPECT_EQ(runs, 3);

  count = capacity = 1;
  table = static_cast<KwaTagEntry *>(std::calloc(1, sizeof(KwaTagEntry)));
  failAllocationFrom(1);
  EXPECT_EQ(kwaAddToTbl("B", "b", &count, &capacity, &table), 0);
  failAllocationFrom(0);
  EXPECT_TRUE(table == nullptr && count == 1);
}
