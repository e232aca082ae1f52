// fsDateTime: every input and output layout, separators, useNow and messages.
#include <fskit/datetime.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "tests/support/test_support.h"

using fskit::test::captureStderr;

namespace {

struct Converted {
  int32_t result = -1;
  std::string text;
  std::string err;
};

// Converts into a buffer that starts out filled with '#', so an untouched
// output shows as "#".
Converted convert(int32_t in, const char *input, int32_t out, const char *separators = nullptr,
                  int32_t useNow = 0) {
  Converted c;
  char buffer[128];
  std::memset(buffer, '#', sizeof buffer);
  buffer[1] = '\0';
  c.err = captureStderr(
      [&] { c.result = fsDateTime(in, input, out, buffer, separators, useNow); });
  c.text = buffer;
  return c;
}

void setZone(const char *zone) {
  setenv("TZ", zone, 1);
  tzset();
}

// The current local time as strftime writes it, taken just before and just
// after `body`, so a second (or a midnight) passing between them does no harm.
template <typename Body>
void expectNow(const char *format, Body body) {
  auto stamp = [format] {
    std::time_t now = std::time(nullptr);
    char text[64];
    std::strftime(text, sizeof text, format, std::localtime(&now));
    return std::string(text);
  };
  std::string before = stamp();
  std::string got = body();
  std::string after = stamp();
  EXPECT_TRUE(got == before || got == after) << got << " is not " << before;
}

int currentCenturyBase() {
  std::time_t now = std::time(nullptr);
  int year = std::localtime(&now)->tm_year + 1900;
  return year - year % 100;
}

// The stamp of output layout 6 for a two-digit year of the current century.
std::string stampOfCentury(int yy, const char *rest) {
  return std::to_string(currentCenturyBase() + yy) + rest;
}

}  // namespace

TEST(DateTime, WritesTheRecordInEveryOutputLayout) {
  setZone("UTC0");
  const char *expected[] = {" 3/07/98",
                            "98-03-07",
                            " 7-MAR-98",
                            " 7-MAR-1998",
                            "Sat Mar 07 14:05:09 1998",
                            "14:05:09",
                            "19980307140509+0000",
                            " 7-MAR-98 14:05:09",
                            " 7-MAR-1998 14:05:09",
                            nullptr,
                            "Sat Mar 07 1998 02:05:09 PM"};
  for (int out = 0; out <= 10; ++out) {
    if (expected[out] == nullptr) continue;
    Converted c = convert(6, "19980307140509+0000", out);
    EXPECT_EQ(c.result, 1);
    EXPECT_EQ(c.text, expected[out]) << "layout " << out;
    EXPECT_EQ(c.err, "");
  }
  // Layout 9 counts the seconds of the date as local time.
  auto utc = std::chrono::sys_days(std::chrono::year(1998) / 3 / 7) + std::chrono::hours(14) +
             std::chrono::minutes(5) + std::chrono::seconds(9);
  long long seconds = utc.time_since_epoch().count();
  EXPECT_EQ(convert(6, "19980307140509+0000", 9).text, std::to_string(seconds));
  setZone("EST5");
  EXPECT_EQ(convert(6, "19980307140509+0000", 9).text, std::to_string(seconds + 5 * 3600));
}

TEST(DateTime, ReadsEveryInputLayout) {
  setZone("UTC0");
  struct Case { int in; const char *input; const char *separators; std::string stamp; };
  const std::string century98 = stampOfCentury(98, "0307140509+0000");
  const std::string date98 = stampOfCentury(98, "0307000000+0000");
  const Case cases[] = {
      {0, "3/7/98", nullptr, date98},
      {0, "03-07-1998", nullptr, "19980307000000+0000"},
      {0, "3.7.98", "", date98},
      {0, "030798", "NONE", date98},
      {1, "98-3-7", nullptr, date98},
      {1, "980307", "NONE", date98},
      {2, "07-Mar-98", nullptr, date98},
      {2, " 7/mar/98", nullptr, date98},
      {2, "07MAR98", "NONE", date98},
      {3, "7-mar-1998", nullptr, "19980307000000+0000"},
      {3, "07MAR1998", "NONE", "19980307000000+0000"},
      {4, "Sat Mar  7 14:05:09 1998", nullptr, "19980307140509+0000"},
      {4, "Sat Mar  7 14:05:09 1998", "NONE", "19980307140509+0000"},
      {5, "14:05:09", nullptr, stampOfCentury(0, "0000140509+0000")},
      {5, "140509", "NONE", stampOfCentury(0, "0000140509+0000")},
      {6, "19980307140509+0130", nullptr, "19980307140509+0130"},
      {6, "19980307140509-0500", "NONE", "19980307140509-0500"},
      {7, "07-MAR-98 14:05:09", nullptr, century98},
      {7, "07MAR98 140509", "NONE", century98},
      {8, "07-mar-1998 14.5.9", nullptr, "19980307140509+0000"},
      {8, "07MAR1998 140509", "NONE", "19980307140509+0000"},
      {9, "889279509", nullptr, "19980307140509+0000"},
      {10, "Sat Mar 07 98 02:05:09 pm", nullptr, century98},
      {10, "Sat Mar 07 98 02:05:09 AM", nullptr, stampOfCentury(98, "0307020509+0000")},
      {11, "07 Mar 98  02:05 PM", nullptr, stampOfCentury(98, "0307140500+0000")},
  };
  for (const Case &c : cases) {
    Converted got = convert(c.in, c.input, 6, c.separators);
    EXPECT_EQ(got.result, 1) << c.in << " " << c.input;
    EXPECT_EQ(got.text, c.stamp) << c.in << " " << c.input;
    EXPECT_EQ(got.err, "") << c.in << " " << c.input;
  }
}

TEST(DateTime, YearsMonthNamesAndTheTwelveHourClock) {
  setZone("UTC0");
  // A two-digit year is 98 where the layout has two digits, the current
  // century's where it has four, and 1998 as seconds.
  EXPECT_EQ(convert(0, "3/7/98", 3).text, " 7-MAR-" + std::to_string(currentCenturyBase() + 98));
  EXPECT_EQ(convert(0, "3/7/98", 10).text, "Sat Mar 07 98 00:00:00 AM");
  EXPECT_EQ(convert(0, "3/7/98", 9).text, "889228800");
  EXPECT_EQ(convert(0, "3/7/1998", 0).text, " 3/07/98");
  // Names are printed as typed; a name that matches no month is month 0.
  EXPECT_EQ(convert(4, "sat mar 7 1:2:3 1998", 4).text, "sat mar 07 01:02:03 1998");
  EXPECT_EQ(convert(2, "07-Xyz-98", 2).text, " 7-----98");
  EXPECT_EQ(convert(0, "0/7/1998", 4).text, "Sun --- 07 00:00:00 1998");
  // 12 PM reads as hour 24 and prints as 12 PM again; hour 12 prints as AM.
  EXPECT_EQ(convert(10, "Sat Mar 07 98 12:30:00 PM", 10).text, "Sat Mar 07 98 12:30:00 PM");
  EXPECT_EQ(convert(10, "Sat Mar 07 98 12:30:00 AM", 10).text, "Sat Mar 07 98 12:30:00 AM");
  EXPECT_EQ(convert(10, "Sat Mar 07 98 12:30:00 PM", 5).text, "24:30:00");
  EXPECT_EQ(convert(6, "19980307000000+0000", 10).text, "Sat Mar 07 1998 00:00:00 AM");
  // Day names of other centuries are their own.
  EXPECT_EQ(convert(1, "2026-11-18", 4).text, "Wed Nov 18 00:00:00 2026");
}

TEST(DateTime, Separators) {
  struct Case { int out; const char *separators; const char *text; };
  const Case cases[] = {
      {7, "/.", " 7/MAR/98 14.05.09"}, {7, "/", " 7/MAR/98 14:05:09"},
      {7, "NONE", " 7MAR98 140509"},   {8, "NONE", " 7MAR1998 140509"},
      {0, "NONE", " 30798"},           {5, "NONE", "140509"},
      {0, "abcdef", " 3abcd07abcd98"}, {3, " ", " 7 MAR 1998"},
      {4, "NONE", "Sat Mar 07 14:05:09 1998"}, {1, "none", "98none03none07"},
  };
  for (const Case &c : cases)
    EXPECT_EQ(convert(6, "19980307140509+0000", c.out, c.separators).text, c.text)
        << c.out << " " << c.separators;
}

TEST(DateTime, CurrentTimeFillsWhatTheInputLacks) {
  setZone("UTC0");
  expectNow("%Y%m%d140509+0000", [] { return convert(5, "14:05:09", 6, "", 1).text; });
  expectNow("19980307%H%M%S+0000", [] { return convert(1, "1998/3/7", 6, "", 1).text; });
  // Without useNow the missing date is 0-0-0, which is valid.
  EXPECT_EQ(convert(5, "14:05:09", 0).text, " 0/00/00");
  // A null input is the current time whatever the layout, even one unknown.
  for (int in : {0, 6, 12, 99, -1})
    expectNow("%a %b %d %H:%M:%S %Y", [in] {
      Converted c = convert(in, nullptr, 4);
      EXPECT_EQ(c.err, "");
      return c.text;
    });
  // An input that cannot be read is replaced, silently, and its names dropped.
  struct Unread { int in; const char *input; };
  for (Unread u : {Unread{12, "anything"}, Unread{4, "Xyz Mar 7 1:2"}, Unread{0, "13/1/98"}})
    expectNow("%a %b %d %H:%M:%S %Y", [u] {
      Converted c = convert(u.in, u.input, 4, nullptr, 1);
      EXPECT_EQ(c.result, 1);
      EXPECT_EQ(c.err, "");
      return c.text;
    });
}

TEST(DateTime, FailuresAreReportedOnStandardError) {
  struct Case { int in; const char *input; int out; int result; const char *text; const char *err; };
  const Case cases[] = {
      {12, "3/7/98", 0, 0, "#", "Unable to generate valid input date from: 3/7/98\n"},
      {0, "3/7", 0, 0, "#", "Unable to generate valid input date from: 3/7\n"},
      {0, "13/7/98", 0, 0, "#", "Unable to generate valid input date from: 13/7/98\n"},
      {1, "98-3-32", 0, 0, "#", "Unable to generate valid input date from: 98-3-32\n"},
      {1, "-1-3-7", 0, 0, "#", "Unable to generate valid input date from: -1-3-7\n"},
      {9, "soon", 0, 0, "#", "Unable to generate valid input date from: soon\n"},
      {13, "3/7/98", 0, 0, "#",
       "Unsupported date/time input format 13\nUnable to generate valid input date from: 3/7/98\n"},
      {0, "3/7/98", 11, 0, "", "Unsupported date/time output format 11"},
      {0, "3/7/98", -1, 0, "", "Unsupported date/time output format -1"},
  };
  for (const Case &c : cases) {
    Converted got = convert(c.in, c.input, c.out);
    EXPECT_EQ(got.result, c.result) << c.input;
    EXPECT_EQ(got.text, c.text) << c.input;
    EXPECT_EQ(got.err, c.err) << c.input;
  }
  // With useNow an unknown input layout is still reported, then replaced.
  Converted c = convert(13, "3/7/98", 5, nullptr, 1);
  EXPECT_EQ(c.result, 1);
  EXPECT_EQ(c.err, "Unsupported date/time input format 13\n");
  EXPECT_EQ(fsDateTime(0, "3/7/98", 0, nullptr, nullptr, 0), 0);
}

TEST(DateTime, NoInputWritesPastItsBoundsOrTheLongestOutput) {
  setZone("UTC0");
  // The largest values a layout can read, in the widest layout.
  Converted widest = convert(4, "Sat Mar 07 -2147483648:-2147483648:-2147483648 2147483647", 10);
  EXPECT_EQ(widest.text.substr(3), " Mar 07 2147483647 -2147483648:-2147483648:-2147483648 AM");
  EXPECT_EQ(widest.text.size(), 60u);
  const std::string strange[] = {
      std::string(5000, 'x'), std::string(5000, '9'), "99999999999999999999:99999999999999999999",
      "Wednesday September 2147483647 99999999:-99999999:99999999 2147483647",
      std::string("07-") + std::string(300, 'M') + "-98", "07 Mar 98  99:99 " + std::string(80, 'P'),
      "\xff\xfe\x80 \x01\x02", "%s%n%d%c", ""};
  captureStderr([&] {
    for (const std::string &input : strange)
      for (int in = 0; in <= 12; ++in)
        for (int out = 0; out <= 10; ++out)
          for (const char *separators : {"", "NONE", "wxyz"}) {
            char buffer[61 + 8];
            std::memset(buffer, '#', sizeof buffer);
            fsDateTime(in, input.c_str(), out, buffer, separators, 0);
            ASSERT_EQ(std::string(buffer + 61, 8), std::string(8, '#')) << in << " " << out;
            ASSERT_TRUE(buffer[0] == '#' || std::strlen(buffer) <= 60);
          }
  });
}

TEST(DateCommand, ConvertsListsLayoutsAndReportsErrors) {
  using fskit::test::runTool;
  auto converted = runTool({"date", "--in", "6", "--out", "3", "19980307140509+0000"});
  EXPECT_EQ(converted.status, 0);
  EXPECT_EQ(converted.out, " 7-MAR-1998\n");
  auto separated = runTool({"date", "--in", "2", "--out", "7", "--sep", "NONE", "07MAR98"});
  EXPECT_EQ(separated.out, " 7MAR98 000000\n");
  auto now = runTool({"date", "--out", "6"});
  EXPECT_EQ(now.status, 0);
  EXPECT_EQ(now.out.size(), 20u);
  auto filled = runTool({"date", "--in", "5", "--out", "5", "--now", "1:2:3"});
  EXPECT_EQ(filled.out, "01:02:03\n");
  auto layouts = runTool({"date", "--layouts"});
  EXPECT_EQ(layouts.status, 0);
  EXPECT_NE(layouts.out.find("in 6\t19980307140509+0000"), std::string::npos) << layouts.out;
  EXPECT_NE(layouts.out.find("out 4\tSat Mar 07 14:05:09 1998"), std::string::npos);
  auto unreadable = runTool({"date", "--in", "0", "tomorrow"});
  EXPECT_EQ(unreadable.status, 1);
  EXPECT_EQ(unreadable.err, "Unable to generate valid input date from: tomorrow\n");
  EXPECT_EQ(runTool({"date", "--out", "11"}).status, 2);
  EXPECT_EQ(runTool({"date", "--in", "x", "1"}).status, 2);
  EXPECT_EQ(runTool({"date", "a", "b"}).status, 2);
}
