// SPDX-License-Identifier: MIT
// Dates through local time (seconds, the asctime text, file times) share no buffer between threads.
#include <fskit/datetime.h>
#include <fskit/files.h>
#include <gtest/gtest.h>
#include <utime.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "tests/support/test_support.h"
#include "tests/threads/stress.h"

namespace {

std::string datedFile(int worker) {
  return fskit::stress::scratchDir() + "/dated_" + std::to_string(worker);
}

void makeDatedFiles() {
  // Local time with a daylight-saving rule, so that conversions depend on it.
  fskit::test::setTimeZone("EST5EDT,M3.2.0,M11.1.0");
  for (int worker = 0; worker < fskit::stress::kThreads; ++worker) {
    fskit::test::writeFile(datedFile(worker), "x");
    utimbuf times{};
    times.actime = times.modtime = 900000000 + worker * 86400 * 37;
    ASSERT_EQ(utime(datedFile(worker).c_str(), &times), 0);
  }
}

std::string datesRound(int worker, int round) {
  std::string out;
  char text[64];
  long long seconds = 800000000LL + (worker * 131 + round) % 500 * 7919LL * 3600;
  std::string input = std::to_string(seconds);
  for (int layout : {4, 6, 8, 10}) {
    text[0] = '\0';  // a failed conversion leaves the output as it was
    fsDateTime(9, input.c_str(), layout, text, "", 0);
    out += std::string(text) + "|";
  }
  // A calendar date to seconds and back.
  std::snprintf(text, sizeof text, "%d/%d/%d", 1 + round % 12, 1 + (worker * 3 + round) % 28,
                1950 + round % 90);
  char stamp[64] = "", back[64] = "";
  fsDateTime(0, text, 9, stamp, "", 0);
  fsDateTime(9, stamp, 3, back, "", 0);
  out += std::string(stamp) + "|" + back + "|" + std::to_string(fsWeekday(1950 + round % 90, 3, 7));
  double value = 0;
  fsLastModified(datedFile(worker).c_str(), text, &value);
  out += std::string("|") + text;
  // The text is per thread: ThreadSanitizer reports a shared one.
  out += std::strlen(fsNowAscTime()) == 24 ? "|now" : "|bad now";
  return out;
}

const fskit::stress::Registration dates{{"dates", 1500, datesRound, makeDatedFiles}};

}  // namespace
