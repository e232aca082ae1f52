// The one allocating string function under allocation failure.
#include <fskit/strings.h>
#include <gtest/gtest.h>

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
