// SPDX-License-Identifier: MIT
// The calendar tables and the working record of the date/time conversion,
// shared by the calendar functions, the layout readers and writers.
#pragma once

#include <cstdint>
#include <ctime>

namespace fskit::datetime {

inline constexpr const char *kMonthNames[13] = {
    "---------", "January", "February", "March",     "April",   "May",     "June",
    "July",      "August",  "September", "October", "November", "December"};

inline constexpr const char *kMonthAbbreviations[13] = {
    "---", "JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

// Index 1 is Monday, as fsWeekday counts.
inline constexpr const char *kDayNames[8] = {"---------", "Monday",   "Tuesday",
                                             "Wednesday", "Thursday", "Friday",
                                             "Saturday",  "Sunday"};

inline constexpr int32_t kDaysPerMonth[2][13] = {
    {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
    {0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}};

// The date as read: the year two-digit or full, whichever the input gave.
// `unused` is always 0; `zone` is hhmm with its sign (+0130 is 130).
struct DateRecord {
  int32_t year = 0;
  int32_t month = 0;
  int32_t day = 0;
  int32_t weekday = 0;
  int32_t hour = 0;
  int32_t minute = 0;
  int32_t second = 0;
  int32_t unused = 0;
  int32_t zone = 0;
};

// Clears `record` and fills it with the current local date and time (full
// year); `centuryBase` becomes the current year less its last two digits.
// False, with the record cleared and the base 0, when there is no local time.
bool dateTimeNow(DateRecord &record, int32_t &centuryBase);

// Seconds since 1970 (UTC) of the record taken as local time without daylight
// saving; a year below 1901 counts from 1900. -1 when it cannot be represented.
std::time_t dateTimeToSeconds(const DateRecord &record);

// Everything one fsDateTime call works on besides its arguments. The names are
// those typed in the input, at most 3 characters each, empty when the input
// layout reads none.
struct Conversion {
  DateRecord record;
  int32_t centuryBase = 0;
  char dayName[4] = {};
  char monthName[4] = {};
  char amPm[3] = {};
  char separators[5] = {};  // empty: each output layout's own
  bool noSeparators = false;  // the caller asked for "NONE"
};

// Reads `input` in input layout `layout` (0 to 11) into `conversion`. False
// when fewer fields than the layout needs were read or the layout reads
// nothing (12).
bool readLayout(int32_t layout, const char *input, Conversion &conversion);

// The longest text an output layout can produce, whatever the record holds.
inline constexpr int kMaxOutputLength = 60;

// Writes the record in output layout `layout` (0 to 10) into `text`, which has
// room for kMaxOutputLength characters and the terminator.
void writeLayout(int32_t layout, const Conversion &conversion, char *text);

}  // namespace fskit::datetime
