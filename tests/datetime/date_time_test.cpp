// SPDX-License-Identifier: MIT
// fsDateTime: every layout, separators, useNow and messages; the quiet internal conversion.
#include <fskit/datetime.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <utility>

#include "datetime/conversion_internal.h"
#include "tests/support/test_support.h"

using fskit::test::captureStderr;

namespace {

struct Converted {
  int32_t result = -1;
  std::string text, err;
  std::string all() const { return std::to_string(result) + text + err; }
};

// The output buffer starts as "#", so an untouched output shows as "#".
Converted convert(int32_t in, const char *input, int32_t out, const char *separators = nullptr,
                  int32_t useNow = 0) {
  Converted c;
  char buffer[128] = "#";
  c.err = captureStderr([&] { c.result = fsDateTime(in, input, out, buffer, separators, useNow); });
  c.text = buffer;
  return c;
}

std::string localNow(const char *format) {
  std::time_t now = std::time(nullptr);
  char text[64];
  std::strftime(text, sizeof text, format, std::localtime(&now));
  return text;
}

// `got` is the current time in `format` as read before or after it (a second may pass).
template <typename Body>
void expectNow(const char *format, Body body) {
  std::string before = localNow(format), got = body(), after = localNow(format);
  EXPECT_TRUE(got == before || got == after) << got << " is not " << before;
}

// A two-digit year of the current century, in full.
std::string inCentury(int yy) {
  int year = std::stoi(localNow("%Y"));
  return std::to_string(year - year % 100 + yy);
}

const char *const kSample = "19980307140509+0000";

std::string unreadable(const std::string &input) {
  return "Unable to generate valid input date from: " + input + "\n";
}

}  // namespace

TEST(DateTime, WritesTheRecordInEveryOutputLayout) {
  fskit::test::setTimeZone("UTC0");
  const char *expected[] = {" 3/07/98", "98-03-07", " 7-MAR-98", " 7-MAR-1998",
                            "Sat Mar 07 14:05:09 1998", "14:05:09", kSample,
                            " 7-MAR-98 14:05:09", " 7-MAR-1998 14:05:09",
                            "889279509",  // date -u -d "1998-03-07 14:05:09" +%s
                            "Sat Mar 07 1998 02:05:09 PM"};
  for (int out = 0; out <= 10; ++out)
    EXPECT_EQ(convert(6, kSample, out).all(), "1" + std::string(expected[out])) << out;
  // A 32-bit time_t once kept 2040 from being read from layout 9 or written to it.
  EXPECT_EQ(convert(6, "20400101000000+0000", 9).text, "2208988800");
  fskit::test::setTimeZone("EST5");  // seconds count the date as local time
  EXPECT_EQ(convert(6, kSample, 9).text, std::to_string(889279509 + 5 * 3600));
  // The widest output fits the 60 characters promised (any input: fuzz/datetime/convert_fuzz).
  Converted widest = convert(4, "Sat Mar 07 -2147483648:-2147483648:-2147483648 2147483647", 10);
  EXPECT_EQ(widest.text.substr(3), " Mar 07 2147483647 -2147483648:-2147483648:-2147483648 AM");
}

TEST(DateTime, ReadsEveryInputLayout) {
  fskit::test::setTimeZone("UTC0");
  struct Case { int in; const char *input, *separators; std::string stamp; };
  const std::string day98 = inCentury(98) + "0307000000+0000", time98 = inCentury(98) + "0307140509+0000";
  const Case cases[] = {
      {0, "3/7/98", nullptr, day98},  {0, "03-07-1998", "", "19980307000000+0000"},
      {0, "3.7.98", "x", day98},      {0, "030798", "NONE", day98},
      {1, "98-3-7", nullptr, day98},  {1, "980307", "NONE", day98},
      {2, " 7/mar/98", nullptr, day98}, {2, "07MAR98", "NONE", day98},
      {3, "7-mar-1998", nullptr, "19980307000000+0000"}, {3, "07MAR1998", "NONE", "19980307000000+0000"},
      {4, "Sat Mar  7 14:05:09 1998", "NONE", kSample},
      {5, "14:05:09", nullptr, inCentury(0) + "0000140509+0000"},
      {5, "140509", "NONE", inCentury(0) + "0000140509+0000"},
      {6, "19980307140509+0130", nullptr, "19980307140509+0130"},
      {7, "07-MAR-98 14:05:09", nullptr, time98}, {7, "07MAR98 140509", "NONE", time98},
      {8, "07-mar-1998 14.5.9", nullptr, kSample}, {8, "07MAR1998 140509", "NONE", kSample},
      {9, "889279509", nullptr, kSample}, {9, "2208988800", nullptr, "20400101000000+0000"},
      {10, "Sat Mar 07 98 02:05:09 pm", nullptr, time98},
      {11, "07 Mar 98  02:05 AM", nullptr, inCentury(98) + "0307020500+0000"},
  };
  for (const Case &c : cases) {
    Converted got = convert(c.in, c.input, 6, c.separators);
    EXPECT_EQ(got.text + got.err, c.stamp) << c.in << " " << c.input;
  }
}

TEST(DateTime, MonthNamesAndTheTwelveHourClock) {
  fskit::test::setTimeZone("UTC0");
  // Names are printed as typed; a name that matches no month is month 0.
  EXPECT_EQ(convert(4, "sat mar 7 1:2:3 1998", 4).text, "sat mar 07 01:02:03 1998");
  EXPECT_EQ(convert(2, "07-Xyz-98", 2).text, " 7-----98");
  EXPECT_EQ(convert(0, "0/7/1998", 4).text, "Sun --- 07 00:00:00 1998");
  // 12 PM reads as hour 24 and prints as 12 PM again; hour 12 prints as AM.
  EXPECT_EQ(convert(10, "Sat Mar 07 98 12:30:00 PM", 10).text, "Sat Mar 07 98 12:30:00 PM");
  EXPECT_EQ(convert(10, "Sat Mar 07 98 12:30:00 AM", 10).text, "Sat Mar 07 98 12:30:00 AM");
  EXPECT_EQ(convert(6, "19980307000000+0000", 10).text, "Sat Mar 07 1998 00:00:00 AM");
  EXPECT_EQ(convert(1, "2026-11-18", 4).text, "Wed Nov 18 00:00:00 2026");
}

TEST(DateTime, Separators) {
  struct Case { int out; const char *separators, *text; };
  const Case cases[] = {
      {7, "/.", " 7/MAR/98 14.05.09"}, {7, "/", " 7/MAR/98 14:05:09"},
      {8, "NONE", " 7MAR1998 140509"}, {5, "NONE", "140509"},
      {0, "abcdef", " 3abcd07abcd98"}, {1, "none", "98none03none07"},
  };
  for (const Case &c : cases)
    EXPECT_EQ(convert(6, kSample, c.out, c.separators).text, c.text) << c.separators;
}

TEST(DateTime, CurrentTimeFillsWhatTheInputLacks) {
  expectNow("%Y%m%d140509+0000", [] { return convert(5, "14:05:09", 6, "", 1).text; });
  expectNow("19980307%H%M%S+0000", [] { return convert(1, "1998/3/7", 6, "", 1).text; });
  EXPECT_EQ(convert(5, "14:05:09", 0).text, " 0/00/00");  // no date: 0-0-0 is valid
  // A null input is now in any layout; an unreadable one with useNow is replaced silently.
  struct Case { int in; const char *input; int useNow; };
  for (Case c : {Case{99, nullptr, 0}, Case{12, "x", 1}, Case{0, "3/7", 1}})
    expectNow("1%a %b %d %H:%M:%S %Y",
              [c] { return convert(c.in, c.input, 4, nullptr, c.useNow).all(); });
}

TEST(DateTime, FailuresAreReportedOnStandardError) {
  const std::string unsupported = "Unsupported date/time input format 13\n";
  struct Case { int in; std::string input; std::string before; };  // before the unreadable input
  const Case cases[] = {{2, std::string(5000, 'x'), ""}, {12, "3/7/98", ""}, {0, "3/7", ""},
                        {0, "13/7/98", ""},             {9, "soon", ""},    {13, "3/7/98", unsupported}};
  for (const Case &c : cases)
    EXPECT_EQ(convert(c.in, c.input.c_str(), 1).all(), "0#" + c.before + unreadable(c.input));
  EXPECT_EQ(convert(0, "3/7/98", 11).all(), "0Unsupported date/time output format 11");
  Converted replaced = convert(13, "3/7/98", 5, nullptr, 1);
  EXPECT_EQ(std::to_string(replaced.result) + replaced.err, "1" + unsupported);
  EXPECT_EQ(fsDateTime(0, "3/7/98", 0, nullptr, nullptr, 0), 0);
}

TEST(DateTime, NamesReadBeforeAFailedInputStayWithTheCurrentTime) {
  // The names read before the input failed used to give way to today's.
  struct Case { int32_t in; const char *input, *names; };  // names: what layout 4 begins with
  const Case cases[] = {{4, "Xyz Mar 7 1:2", "Xyz Mar"}, {4, "sun jan 45 10:00:00 1998", "sun jan"},
                        {2, "07-Feb", "%a Feb"}, {10, "Fri Aug 01 98 10:00", "Fri Aug"}};
  for (const Case &c : cases)
    expectNow(("1" + std::string(c.names) + " %d %H:%M:%S %Y").c_str(),
              [&] { return convert(c.in, c.input, 4, nullptr, 1).all(); });
}

TEST(DateTime, NumbersBeyondAnIntMakeTheInputUnreadable) {
  // Once stored wrapped ("1/2/4294967394" read as year 98); @ is each field without a width.
  const std::vector<std::pair<int32_t, std::vector<std::string>>> layouts = {
      {0, {"@/2/98", "1/@/98", "1/2/@"}},
      {1, {"@/1/2", "98/@/2", "98/1/@"}},
      {4, {"Sun Jan @ 00:00:00 1998", "Sun Jan 1 @:00:00 1998", "Sun Jan 1 00:@:00 1998",
           "Sun Jan 1 00:00:@ 1998", "Sun Jan 1 00:00:00 @"}},
      {5, {"@:0:0", "0:@:0", "0:0:@"}},
      {7, {"01-JAN-98 @:00:00", "01-JAN-98 00:@:00", "01-JAN-98 00:00:@"}},
      {8, {"01-JAN-1998 @:00:00", "01-JAN-1998 00:@:00", "01-JAN-1998 00:00:@"}},
      {9, {"@000000000", "@00000000000"}},  // beyond local time's years, and 64 bits
  };
  for (const std::string number : {"2147483648", "-2147483649", "4294967394", "99999999999999999999"})
    for (const auto &[in, fields] : layouts)
      for (std::string input : fields) {
        input.replace(input.find('@'), 1, number);
        EXPECT_EQ(convert(in, input.c_str(), 5, "").all(), "0#" + unreadable(input));
      }
  // Up to the limits of an int (leading zeros or not) numbers read as before.
  const std::pair<const char *, const char *> hours[] = {
      {"2147483647", "2147483647"}, {"-2147483648", "-2147483648"}, {"-00000000002147483648", "-2147483648"}};
  for (auto [hour, read] : hours)
    EXPECT_EQ(convert(5, (hour + std::string(":7:8")).c_str(), 5, "").text, read + std::string(":07:08"));
}

TEST(DateCommand, ConvertsListsLayoutsAndReportsErrors) {
  using fskit::test::runTool;
  EXPECT_EQ(runTool({"date", "--in", "2", "--out", "7", "--sep", "NONE", "07MAR98"}).out,
            " 7MAR98 000000\n");
  EXPECT_EQ(runTool({"date", "--in", "5", "--out", "5", "--now", "1:2:3"}).out, "01:02:03\n");
  EXPECT_EQ(runTool({"date", "--out", "6"}).out.size(), 20u);
  auto layouts = runTool({"date", "--layouts"}).out;
  EXPECT_EQ(layouts.rfind("direction\tlayout\texample\tfields\n", 0), 0u) << layouts;
  EXPECT_NE(layouts.find("\nin\t6\t19980307140509+0000\tyyyymmddhhmmss and zone\n"),
            std::string::npos) << layouts;
  auto json = runTool({"date", "--layouts", "--json"}).out;
  EXPECT_NE(json.find("\n{\"direction\":\"out\",\"layout\":4,\"example\":\"Sat Mar 07 14:05:09 "
                      "1998\",\"fields\":\"\"}\n"), std::string::npos) << json;
  EXPECT_EQ(std::count(json.begin(), json.end(), '\n'), 24);
  auto failed = runTool({"date", "--in", "0", "tomorrow"});
  EXPECT_EQ(std::to_string(failed.status) + failed.err, "1" + unreadable("tomorrow"));
  EXPECT_EQ(runTool({"date", "--out", "11"}).status + runTool({"date", "a", "b"}).status, 4);
}

TEST(DateConversion, SameResultAndTheMessagesFsDateTimePrints) {
  const std::string longInput(5000, 'x');  // handed back whole
  struct Case { int32_t in; const char *input; int32_t out; };
  const Case cases[] = {{8, "7-MAR-1998 14:05:09", 4}, {0, "3/07/98", 6}, {6, "19980307140509+0130", 10},
                        {3, "garbage", 1},             {33, "7-MAR-98", 1}, {2, "7-MAR-98", 44},
                        {-1, "x", 0},                  {2, "31-FEB-98", 99}, {2, longInput.c_str(), 1}};
  for (const Case &c : cases) {
    const Converted printed = convert(c.in, c.input, c.out);
    Converted quiet;
    char buffer[61] = "#";
    EXPECT_EQ(captureStderr([&] {
                quiet.result = fskit::datetime::convertDateTime(c.in, c.input, c.out, buffer,
                                                                nullptr, 0, &quiet.err);
              }),
              "");
    EXPECT_EQ(std::to_string(quiet.result) + buffer + quiet.err, printed.all());
    EXPECT_EQ(quiet.err.empty(), quiet.result == 1) << c.input;
  }
}
