// SPDX-License-Identifier: MIT
// Leap years, month names and numbers, and days of the year.
#include <fskit/datetime.h>
#include <fskit/strings.h>

#include "datetime/date_record.h"

using namespace fskit::datetime;

namespace {

bool inMonthRange(int32_t month) { return month >= 1 && month <= 12; }

}  // namespace

extern "C" {

FSKIT_API int32_t fsIsLeap(int32_t year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0 ? 1 : 0;
}

FSKIT_API char *fsMonthName(int32_t month) {
  return const_cast<char *>(kMonthNames[inMonthRange(month) ? month : 0]);
}

FSKIT_API char *fsMonth3name(int32_t month) {
  return const_cast<char *>(kMonthAbbreviations[inMonthRange(month) ? month : 0]);
}

FSKIT_API int32_t fsMonthNumber(const char *name) {
  if (name == nullptr) return 0;
  for (int32_t month = 1; month <= 12; ++month)
    if (stricmps(name, kMonthNames[month]) == 0) return month;
  return 0;
}

FSKIT_API void fsMonthDay(int32_t year, int32_t dayOfYear, int32_t *month, int32_t *day) {
  const int32_t *lengths = kDaysPerMonth[fsIsLeap(year)];
  int32_t m = 1;
  // The walk stops at December so that a day beyond the year cannot run past
  // the table.
  while (m < 12 && dayOfYear > lengths[m]) dayOfYear -= lengths[m++];
  if (month != nullptr) *month = m;
  if (day != nullptr) *day = dayOfYear;
}

}  // extern "C"
