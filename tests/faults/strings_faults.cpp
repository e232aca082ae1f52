// SPDX-License-Identifier: MIT
// The one allocating string function under allocation failure.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/support/alloc_fault.h"

TEST(StringsFaults, FieldCopyLeavesDestinationUntouched) {
  char dst[8];
  char *result = nullptr;
  long runs = fskit::test::forEachAllocationFailure(
      [&] {
        std::string(sizeof dst, '~').copy(dst, sizeof dst);
        result = strfcpy(dst, sizeof dst, "  ab   cd  ", 11);
      },
      [&](long, bool refused) {
        EXPECT_EQ(result, refused ? nullptr : dst);
        EXPECT_EQ(std::string(dst, sizeof dst), refused ? "~~~~~~~~" : std::string("ab cd\0\0\0", 8));
      });
  EXPECT_EQ(runs, 2);
}

TEST(StringsFaults, AShortTextInAHugeFieldNeedsLittleMemory) {
  // The work copy was as large as the field said, 4 GiB here (and calloc'ed
  // and filled); where that much cannot be had the copy failed.
  fskit::test::refuseAllocationsAbove(1 << 20);
  char dst[16];
  std::string(sizeof dst, '~').copy(dst, sizeof dst);
  EXPECT_EQ(strfcpy(dst, sizeof dst, "  ab   cd", UINT32_MAX), dst);
  fskit::test::refuseAllocationsAbove(0);
  EXPECT_EQ(std::string(dst, sizeof dst), std::string("ab cd\0\0\0\0\0\0\0\0\0\0\0", 16));
}
