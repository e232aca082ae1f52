// SPDX-License-Identifier: MIT
// Calendar functions, checked against the C++ calendar over whole ranges.
#include <fskit/datetime.h>
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>

namespace chrono = std::chrono;

TEST(Calendar, LeapYearsAndMonthNames) {
  for (int year = -800; year <= 2800; ++year)
    EXPECT_EQ(fsIsLeap(year), chrono::year(year).is_leap() ? 1 : 0) << year;
  EXPECT_STREQ(fsMonthName(12), "December");
  EXPECT_STREQ(fsMonth3name(9), "SEP");
  for (int month : {0, 13, -1, INT32_MIN}) {
    EXPECT_STREQ(fsMonthName(month), "---------");
    EXPECT_STREQ(fsMonth3name(month), "---");
  }
}

TEST(Calendar, MonthNumberMatchesTheShorterTextWithoutCase) {
  struct Case { const char *name; int month; };
  const Case cases[] = {{"nov", 11}, {"NOVEMBER", 11}, {"n", 11},    {"Ma", 3},   {"May", 5},
                        {"Ju", 6},   {"Januaryx", 1},  {"Sept.", 0}, {"x", 0},    {"", 1},
                        {nullptr, 0}};
  for (const Case &c : cases) EXPECT_EQ(fsMonthNumber(c.name), c.month) << c.name;
}

TEST(Calendar, MonthDayWalksEveryDayOfTheYear) {
  for (int year : {1900, 1996, 2000, 2023, 2024}) {
    chrono::sys_days first = chrono::year(year) / 1 / 1;
    for (int n = 1; n <= (chrono::year(year).is_leap() ? 366 : 365); ++n) {
      chrono::year_month_day expected{first + chrono::days(n - 1)};
      int32_t month = -1, day = -1;
      fsMonthDay(year, n, &month, &day);
      ASSERT_EQ(month, int(unsigned(expected.month()))) << year << " day " << n;
      ASSERT_EQ(day, int(unsigned(expected.day()))) << year << " day " << n;
    }
  }
  int32_t month = -1, day = -1;
  fsMonthDay(2023, 0, &month, &day);
  EXPECT_EQ(month * 1000 + day, 1000);
  fsMonthDay(2023, 400, &month, &day);  // beyond the year: stays in December
  EXPECT_EQ(month * 1000 + day, 12066);
}

TEST(Calendar, WeekdayOfEveryDateOfThe1900sAndOfOtherCenturies) {
  auto check = [](chrono::sys_days from, chrono::sys_days to, int step) {
    for (chrono::sys_days d = from; d <= to; d += chrono::days(step)) {
      chrono::year_month_day date{d};
      int year = int(date.year()), month = int(unsigned(date.month())), day = int(unsigned(date.day()));
      if (year >= 0 && year <= 99) continue;  // read as 19yy
      int expected = int(chrono::weekday(d).iso_encoding());
      ASSERT_EQ(fsWeekday(year, month, day), expected) << year << "-" << month << "-" << day;
      if (year >= 1900 && year <= 1999) {
        ASSERT_EQ(fsWeekday(year % 100, month, day), expected);
      }
    }
  };
  check(chrono::year(1900) / 1 / 1, chrono::year(1999) / 12 / 31, 1);
  check(chrono::year(-1) / 1 / 1, chrono::year(1899) / 12 / 31, 13);
  check(chrono::year(2000) / 1 / 1, chrono::year(9999) / 12 / 31, 13);
  // Day counts below zero in the 1900s keep the negative remainder (once brought into 1 to 7).
  EXPECT_EQ(fsWeekday(98, 3, -301), -1);
  EXPECT_EQ(fsWeekday(1950, -1000, 1), -5);
  for (int value : {INT32_MIN, -100, 0, 13, INT32_MAX})
    for (int year : {2026, INT32_MIN, INT32_MAX}) {
      int32_t byMonth = fsWeekday(year, value, 1), byDay = fsWeekday(year, 1, value);
      EXPECT_TRUE(byMonth >= 1 && byMonth <= 7 && byDay >= 1 && byDay <= 7) << year << " " << value;
    }
}

TEST(Calendar, NowAscTimeIsTheAsctimeTextWithoutItsLineEnd) {
  std::time_t before = std::time(nullptr);
  std::string now = fsNowAscTime();
  std::time_t after = std::time(nullptr);
  std::string expected1 = std::asctime(std::localtime(&before)), expected2 = std::asctime(std::localtime(&after));
  EXPECT_TRUE(now + "\n" == expected1 || now + "\n" == expected2) << now;
}
