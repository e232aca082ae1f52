// SPDX-License-Identifier: MIT
// Cases that once went wrong in the datetime family, each with what it used to do.
#include <fskit/datetime.h>
#include <gtest/gtest.h>

#include <climits>
#include <ctime>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace {

std::string localNow(const char *format) {
  std::time_t now = std::time(nullptr);
  char text[64];
  std::strftime(text, sizeof text, format, std::localtime(&now));
  return text;
}

}  // namespace

TEST(DateTimeRegression, NamesReadBeforeAFailedInputStayWithTheCurrentTime) {
  struct Case {
    int32_t in;
    const char *input;
    const char *names;  // what layout 4 begins with
  };
  const Case cases[] = {
      // Too few fields: "Xyz" and "Mar" were dropped for today's names.
      {4, "Xyz Mar 7 1:2", "Xyz Mar"},
      // A day beyond 31 makes the date invalid after both names were read.
      {4, "sun jan 45 10:00:00 1998", "sun jan"},
      // The month name of a day-month-year input that stops short.
      {2, "07-Feb", "%a Feb"},
      // Input layout 10 reads a day name too.
      {10, "Fri Aug 01 98 10:00", "Fri Aug"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.input);
    std::string before = localNow((std::string(c.names) + " %d %H:%M:%S %Y").c_str());
    char output[64] = "#";
    std::string err = fskit::test::captureStderr(
        [&] { EXPECT_EQ(fsDateTime(c.in, c.input, 4, output, nullptr, 1), 1); });
    std::string after = localNow((std::string(c.names) + " %d %H:%M:%S %Y").c_str());
    EXPECT_TRUE(output == before || output == after) << output << " is not " << before;
    EXPECT_EQ(err, "");
  }
}

TEST(DateTimeRegression, WeekdayOfThe1900sKeepsTheTruncatedRemainder) {
  struct Case {
    int32_t year, month, day, weekday;
  };
  const Case cases[] = {
      // Counts below zero were brought into 1 to 7 (6, 3 and 2); the
      // remainder of a negative count is negative.
      {98, 3, -301, -1},
      {0, 1, -200, -4},
      {1950, -1000, 1, -5},
  };
  for (const Case &c : cases)
    EXPECT_EQ(fsWeekday(c.year, c.month, c.day), c.weekday) << c.year << "-" << c.month << "-" << c.day;
}

TEST(DateTimeRegression, NumbersBeyondAnIntMakeTheInputUnreadable) {
  // sscanf's %d stored such numbers wrapped: "1/2/4294967394" read as year 98,
  // a month of 4294967297 as January. Every field read without a width is
  // tried (@ stands for the number); the others cannot hold that many digits.
  struct Layout {
    int32_t in;
    std::vector<std::string> fields;
  };
  const Layout layouts[] = {
      {0, {"@/2/98", "1/@/98", "1/2/@"}},
      {1, {"@/1/2", "98/@/2", "98/1/@"}},
      {4, {"Sun Jan @ 00:00:00 1998", "Sun Jan 1 @:00:00 1998", "Sun Jan 1 00:@:00 1998",
           "Sun Jan 1 00:00:@ 1998", "Sun Jan 1 00:00:00 @"}},
      {5, {"@:0:0", "0:@:0", "0:0:@"}},
      {7, {"01-JAN-98 @:00:00", "01-JAN-98 00:@:00", "01-JAN-98 00:00:@"}},
      {8, {"01-JAN-1998 @:00:00", "01-JAN-1998 00:@:00", "01-JAN-1998 00:00:@"}},
      // Seconds beyond the years local time gives, and beyond 64 bits.
      {9, {"@000000000", "@00000000000"}},
  };
  const long long beyond = static_cast<long long>(INT_MAX) + 1;
  for (const std::string &number :
       {std::to_string(beyond), std::to_string(-beyond - 1), std::to_string(2 * beyond + 1),
        std::to_string(2 * beyond + 98), std::string(20, '9')}) {
    for (const Layout &layout : layouts) {
      for (const std::string &field : layout.fields) {
        std::string input = field;
        input.replace(input.find('@'), 1, number);
        SCOPED_TRACE(input);
        for (int32_t out : {3, 5}) {
          char output[64] = "#";
          std::string err = fskit::test::captureStderr(
              [&] { EXPECT_EQ(fsDateTime(layout.in, input.c_str(), out, output, "", 0), 0); });
          EXPECT_STREQ(output, "#");
          EXPECT_EQ(err, "Unable to generate valid input date from: " + input + "\n");
        }
      }
    }
  }
  // Up to the limits of an int (leading zeros or not) numbers read as before.
  for (long long hour : {static_cast<long long>(INT_MAX), static_cast<long long>(INT_MIN)}) {
    for (const std::string &zeros : {std::string(), std::string(10, '0')}) {
      std::string digits = std::to_string(hour < 0 ? -hour : hour);
      std::string input = (hour < 0 ? "-" : "") + zeros + digits + ":7:8";
      char output[64] = "#";
      EXPECT_EQ(fsDateTime(5, input.c_str(), 5, output, "", 0), 1) << input;
      EXPECT_EQ(output, std::to_string(hour) + ":07:08");
    }
  }
}

TEST(DateTimeRegression, SecondsAfter2038) {
  // A 32-bit build counted seconds in a 32-bit time_t: 2040 could be neither
  // read from layout 9 nor written to it.
  fskit::test::setTimeZone("UTC0");
  char output[64] = "";
  EXPECT_EQ(fsDateTime(9, "2208988800", 6, output, "", 0), 1);
  EXPECT_STREQ(output, "20400101000000+0000");
  EXPECT_EQ(fsDateTime(6, "20400101000000+0000", 9, output, "", 0), 1);
  EXPECT_STREQ(output, "2208988800");
}
