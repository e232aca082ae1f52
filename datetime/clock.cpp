// SPDX-License-Identifier: MIT
// The current local time, and local times as seconds since 1970. Nothing is
// shared between threads: fsNowAscTime hands out a text of the calling
// thread's own.
#include <cstring>
#include <ctime>

#include <fskit/datetime.h>

#include "datetime/date_record.h"
#include "platform/platform.h"

namespace fskit::datetime {

bool dateTimeNow(DateRecord &record, int32_t &centuryBase) {
  record = DateRecord{};
  centuryBase = 0;
  std::time_t now = std::time(nullptr);
  std::tm local;
  if (now == static_cast<std::time_t>(-1) || !platform::localTime(now, local)) return false;
  record.year = local.tm_year + 1900;
  record.month = local.tm_mon + 1;
  record.day = local.tm_mday;
  record.hour = local.tm_hour;
  record.minute = local.tm_min;
  record.second = local.tm_sec;
  centuryBase = record.year - record.year % 100;
  return true;
}

std::time_t dateTimeToSeconds(const DateRecord &record) {
  std::tm local{};
  local.tm_year = record.year < 1901 ? record.year : record.year - 1900;
  local.tm_mon = record.month - 1;
  local.tm_mday = record.day;
  local.tm_hour = record.hour;
  local.tm_min = record.minute;
  local.tm_sec = record.second;
  local.tm_isdst = 0;
  return std::mktime(&local);
}

}  // namespace fskit::datetime

extern "C" FSKIT_API char *fsNowAscTime(void) {
  thread_local char text[fskit::platform::kAscTimeSize];
  std::time_t now = std::time(nullptr);
  std::tm local;
  if (!fskit::platform::localTime(now, local) || !fskit::platform::ascTime(local, text)) {
    text[0] = '\0';
    return text;
  }
  if (char *lineEnd = std::strchr(text, '\n')) *lineEnd = '\0';
  return text;
}
