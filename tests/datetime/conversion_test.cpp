// SPDX-License-Identifier: MIT
// The internal date conversion: the results of fsDateTime, with the messages
// fsDateTime prints handed back byte for byte instead.
#include <gtest/gtest.h>

#include <fskit/datetime.h>

#include <string>

#include "datetime/conversion_internal.h"
#include "tests/support/test_support.h"

using fskit::datetime::convertDateTime;
using fskit::test::captureStderr;

namespace {

struct Case {
  int32_t in;
  const char *input;
  int32_t out;
};

TEST(DateConversion, SameResultAndTheMessagesFsDateTimePrints) {
  const std::string longInput(5000, 'x');  // handed back whole
  const Case cases[] = {{8, "7-MAR-1998 14:05:09", 4}, {0, "3/07/98", 6}, {6, "19980307140509+0130", 10},
                        {3, "garbage", 1},             {33, "7-MAR-98", 1}, {2, "7-MAR-98", 44},
                        {-1, "x", 0},                  {2, "31-FEB-98", 99}, {2, longInput.c_str(), 1}};
  for (const Case &c : cases) {
    char printed[61] = "unchanged", quiet[61] = "unchanged";
    int32_t printedResult = 0, quietResult = 0;
    std::string problems;
    std::string err = captureStderr([&] { printedResult = fsDateTime(c.in, c.input, c.out, printed, nullptr, 0); });
    std::string none = captureStderr([&] {
      quietResult = convertDateTime(c.in, c.input, c.out, quiet, nullptr, 0, &problems);
    });
    EXPECT_EQ(quietResult, printedResult) << c.input;
    EXPECT_STREQ(quiet, printed) << c.input;
    EXPECT_EQ(problems, err) << c.input;
    EXPECT_EQ(none, "") << c.input;
    EXPECT_EQ(problems.empty(), printedResult == 1) << c.input;
  }
}

}  // namespace
