// SPDX-License-Identifier: MIT
// The weekday of a date, 1 Monday to 7 Sunday.
//
// Dates of the 1900s, and two-digit years, which the data system's files hold
// for them, keep the original library's arithmetic so that files written by it
// get the same day names, down to its remainder of a count below zero. Other
// years get their Gregorian weekday, so that the day names of today's dates
// are right. Everything is done in 64 bits: days and months come straight from
// typed input and may be any 32-bit value.
#include <fskit/datetime.h>

namespace {

int64_t floorDiv(int64_t a, int64_t b) { return a / b - (a % b != 0 && (a < 0) != (b < 0)); }
int64_t floorMod(int64_t a, int64_t b) { return a - b * floorDiv(a, b); }

// Divisions truncate toward zero, as the original library's did.
int64_t twentiethCenturyWeekday(int64_t year, int64_t month, int64_t day) {
  int64_t y = year % 100;
  int64_t shifted = y + (month - 14) / 12;  // January and February count with the year before
  int64_t century = shifted / 100;
  int64_t yearOfCentury = shifted - 100 * century;
  int64_t marchBased = (month + 10) - 12 * ((month + 10) / 13);  // March 1 ... February 12
  return (5 * yearOfCentury) / 4 + day + (13 * marchBased - 1) / 5 + 2 * (39 - century);
}

// Days from 1970-01-01 in the proleptic Gregorian calendar, counted in 400-year
// cycles of 146097 days from a year that starts on March 1.
int64_t daysSince1970(int64_t year, int64_t month, int64_t day) {
  year += floorDiv(month - 1, 12);
  month = floorMod(month - 1, 12) + 1;
  if (month <= 2) --year;
  int64_t cycle = floorDiv(year, 400);
  int64_t yearOfCycle = year - 400 * cycle;
  int64_t dayOfYear = (153 * ((month + 9) % 12) + 2) / 5 + day - 1;
  int64_t dayOfCycle = 365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100 + dayOfYear;
  return 146097 * cycle + dayOfCycle - 719468;  // 719468: days from 0000-03-01 to 1970-01-01
}

}  // namespace

extern "C" FSKIT_API int32_t fsWeekday(int32_t year, int32_t month, int32_t day) {
  int64_t weekday;
  if ((year >= 0 && year <= 99) || (year >= 1900 && year <= 1999))
    // The remainder truncates too: a count below zero gives -6 to -1 (or 7).
    weekday = twentiethCenturyWeekday(year, month, day) % 7;
  else
    weekday = floorMod(daysSince1970(year, month, day) + 4, 7);  // 1970-01-01: Thursday, day 4
  return static_cast<int32_t>(weekday == 0 ? 7 : weekday);
}
