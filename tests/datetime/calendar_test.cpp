// Calendar functions, checked against the C++ calendar over whole ranges.
#include <fskit/datetime.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <ctime>
#include <string>

namespace chrono = std::chrono;

namespace {

int isoWeekday(int year, int month, int day) {
  chrono::year_month_day date{chrono::year(year), chrono::month(unsigned(month)),
                              chrono::day(unsigned(day))};
  return static_cast<int>(chrono::weekday(chrono::sys_days(date)).iso_encoding());
}

}  // namespace

TEST(Calendar, LeapYearsFollowTheGregorianRule) {
  for (int year = -800; year <= 2800; ++year)
    EXPECT_EQ(fsIsLeap(year), chrono::year(year).is_leap() ? 1 : 0) << year;
}

TEST(Calendar, MonthNamesAndAbbreviations) {
  EXPECT_STREQ(fsMonthName(1), "January");
  EXPECT_STREQ(fsMonthName(12), "December");
  EXPECT_STREQ(fsMonth3name(9), "SEP");
  for (int month : {0, 13, -1, INT32_MIN, INT32_MAX}) {
    EXPECT_STREQ(fsMonthName(month), "---------");
    EXPECT_STREQ(fsMonth3name(month), "---");
  }
}

TEST(Calendar, MonthNumberMatchesTheShorterTextWithoutCase) {
  struct Case { const char *name; int month; };
  const Case cases[] = {{"Nov", 11}, {"nov", 11}, {"NOVEMBER", 11}, {"n", 11}, {"Ma", 3},
                        {"May", 5},  {"Ju", 6},   {"jul", 7},       {"Januaryx", 1},
                        {"M", 3},    {"mar", 3},  {"Sept.", 0},     {"x", 0}, {"", 1}};
  for (const Case &c : cases) EXPECT_EQ(fsMonthNumber(c.name), c.month) << c.name;
  EXPECT_EQ(fsMonthNumber(nullptr), 0);
}

TEST(Calendar, MonthDayWalksEveryDayOfTheYear) {
  for (int year : {1900, 1996, 1999, 2000, 2023, 2024}) {
    chrono::sys_days first = chrono::year(year) / 1 / 1;
    int days = chrono::year(year).is_leap() ? 366 : 365;
    for (int n = 1; n <= days; ++n) {
      chrono::year_month_day expected{first + chrono::days(n - 1)};
      int32_t month = -1, day = -1;
      fsMonthDay(year, n, &month, &day);
      ASSERT_EQ(month, int(unsigned(expected.month()))) << year << " day " << n;
      ASSERT_EQ(day, int(unsigned(expected.day()))) << year << " day " << n;
    }
  }
  int32_t month = -1, day = -1;
  fsMonthDay(2023, 0, &month, &day);
  EXPECT_EQ(month, 1);
  EXPECT_EQ(day, 0);
  fsMonthDay(2023, 400, &month, &day);  // beyond the year: stays in December
  EXPECT_EQ(month, 12);
  EXPECT_EQ(day, 66);
  fsMonthDay(2023, 40, nullptr, &day);
  EXPECT_EQ(day, 9);
}

TEST(Calendar, WeekdayOfEveryDateOfThe1900sAndOfOtherCenturies) {
  for (chrono::sys_days d = chrono::year(1900) / 1 / 1; d <= chrono::year(1999) / 12 / 31;
       d += chrono::days(1)) {
    chrono::year_month_day date{d};
    int year = int(date.year()), month = int(unsigned(date.month())),
        day = int(unsigned(date.day()));
    int expected = static_cast<int>(chrono::weekday(d).iso_encoding());
    ASSERT_EQ(fsWeekday(year, month, day), expected) << year << "-" << month << "-" << day;
    ASSERT_EQ(fsWeekday(year % 100, month, day), expected) << year << "-" << month << "-" << day;
  }
  // Full years outside the 1900s get their own Gregorian weekday.
  for (int year : {-1, 100, 1600, 1899, 2000, 2026, 2100, 2400, 9999})
    for (int month = 1; month <= 12; ++month)
      for (int day : {1, 15, 28})
        ASSERT_EQ(fsWeekday(year, month, day), isoWeekday(year, month, day))
            << year << "-" << month << "-" << day;
  EXPECT_EQ(fsWeekday(2026, 11, 18), 3);
  EXPECT_EQ(fsWeekday(1969, 7, 20), 7);
  EXPECT_EQ(fsWeekday(99, 12, 31), 5);
  // Nonsense stays within the week.
  for (int value : {INT32_MIN, -100, 0, 13, 99999, INT32_MAX}) {
    for (int year : {98, 1998, 2026, INT32_MIN, INT32_MAX}) {
      int32_t byMonth = fsWeekday(year, value, 1), byDay = fsWeekday(year, 1, value);
      EXPECT_TRUE(byMonth >= 1 && byMonth <= 7 && byDay >= 1 && byDay <= 7) << year << " " << value;
    }
  }
}

TEST(Calendar, NowAscTimeIsTheAsctimeTextWithoutItsLineEnd) {
  std::time_t before = std::time(nullptr);
  std::string now = fsNowAscTime();
  std::time_t after = std::time(nullptr);
  ASSERT_EQ(now.size(), 24u);
  std::string expected1 = std::asctime(std::localtime(&before));
  std::string expected2 = std::asctime(std::localtime(&after));
  EXPECT_TRUE(now == expected1.substr(0, 24) || now == expected2.substr(0, 24)) << now;
}
