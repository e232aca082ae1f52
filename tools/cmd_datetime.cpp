// SPDX-License-Identifier: MIT
// fskit date: converts a date/time text between the layouts of fsDateTime.
#include <charconv>
#include <cstdio>
#include <string>

#include <fskit/datetime.h>

#include "tools/command.h"

namespace fskit::tool {
namespace {

struct InputExample {
  const char *text;
  const char *fields;
};

// What each input layout reads, with a text it accepts.
constexpr InputExample kInputExamples[] = {
    {"3/7/98", "month, day, year"},
    {"98-03-07", "year, month, day"},
    {"07-MAR-98", "day, month name, two-digit year"},
    {"07-MAR-1998", "day, month name, four-digit year"},
    {"Sat Mar  7 14:05:09 1998", "the asctime text"},
    {"14:05:09", "hour, minute, second"},
    {"19980307140509+0000", "yyyymmddhhmmss and zone"},
    {"07-MAR-98 14:05:09", "day, month name, two-digit year, time"},
    {"07-MAR-1998 14:05:09", "day, month name, four-digit year, time"},
    {"889279509", "seconds since 1970 (UTC)"},
    {"Sat Mar 07 98 02:05:09 PM", "day and month names, day, year, twelve-hour time"},
    {"07 Mar 98  02:05 PM", "day, month name, year, twelve-hour time"},
    {"", "nothing: never read"},
};
constexpr int kOutputLayouts = 11;

// Every layout with an example; the outputs are those of one date converted now.
void printLayouts(bool json) {
  Table table(json, {{"direction"}, {"layout", true}, {"example"}, {"fields"}});
  int number = 0;
  for (const InputExample &example : kInputExamples)
    table.row({"in", std::to_string(number++), example.text, example.fields});
  for (int out = 0; out < kOutputLayouts; ++out) {
    char text[64];
    fsDateTime(6, "19980307140509+0000", out, text, "", 0);
    table.row({"out", std::to_string(out), text, ""});
  }
}

// A layout number from 0 to `last`, or nothing.
std::optional<int> layoutNumber(const std::optional<std::string> &option, int fallback,
                                int last) {
  if (!option) return fallback;
  int value = -1;
  const char *end = option->data() + option->size();
  auto [stop, error] = std::from_chars(option->data(), end, value);
  if (error != std::errc() || stop != end || value < 0 || value > last) return std::nullopt;
  return value;
}

}  // namespace

int runDate(std::vector<std::string> &args) {
  if (takeFlag(args, "--layouts")) {
    bool json = takeFlag(args, "--json");
    if (!args.empty()) return usageError("date", "--layouts takes only --json");
    printLayouts(json);
    return kOk;
  }
  bool missing = false;
  auto in = takeOption(args, "--in", missing);
  auto out = takeOption(args, "--out", missing);
  auto separators = takeOption(args, "--sep", missing);
  bool useNow = takeFlag(args, "--now");
  if (missing) return usageError("date", "an option lacks its value");
  if (auto unknown = unknownOption(args)) return usageError("date", "unknown option " + *unknown);
  if (!args.empty() && args.front() == "--") args.erase(args.begin());
  if (args.size() > 1) return usageError("date", "give at most one date/time text");
  auto inLayout = layoutNumber(in, 6, 12);
  auto outLayout = layoutNumber(out, 4, kOutputLayouts - 1);
  if (!inLayout) return usageError("date", "--in takes a layout number from 0 to 12");
  if (!outLayout) return usageError("date", "--out takes a layout number from 0 to 10");

  char text[64];
  const char *input = args.empty() ? nullptr : args.front().c_str();
  // The library has said on standard error why a text could not be read.
  if (fsDateTime(*inLayout, input, *outLayout, text, separators ? separators->c_str() : nullptr,
                 useNow ? 1 : 0) == 0)
    return kFailed;
  std::printf("%s\n", text);
  return kOk;
}

}  // namespace fskit::tool
