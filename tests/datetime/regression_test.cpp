// Cases that once went wrong in the datetime family, each with what it used to do.
#include <fskit/datetime.h>
#include <gtest/gtest.h>

#include <ctime>
#include <string>

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
