// SPDX-License-Identifier: MIT
// Reading the input layouts of fsDateTime. Every text field is read with a
// width (%3s, %2s, %3c), so no input can write past the conversion's fields.
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <limits>

#include <fskit/datetime.h>
#include <fskit/strings.h>

#include "datetime/date_record.h"
#include "platform/ascii.h"
#include "platform/platform.h"

namespace fskit::datetime {
namespace {

// A fixed-width field as atoi() reads it; fields are at most 5 characters, so
// the value cannot overflow.
int32_t fieldNumber(const char *field) {
  while (ascii::isSpace(*field)) ++field;
  bool negative = *field == '-';
  if (*field == '-' || *field == '+') ++field;
  int32_t value = 0;
  while (ascii::isDigit(*field)) value = value * 10 + (*field++ - '0');
  return negative ? -value : value;
}

// The leading decimal number of `text` (blanks, an optional sign, digits), as
// seconds; false when there is none or it does not fit in 64 bits or in a
// time_t.
bool leadingSeconds(const char *text, std::time_t &seconds) {
  while (ascii::isSpace(*text)) ++text;
  bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  if (!ascii::isDigit(*text)) return false;
  long long value = 0;
  for (; ascii::isDigit(*text); ++text) {
    int digit = *text - '0';
    if (value > (LLONG_MAX - digit) / 10) return false;
    value = value * 10 + digit;
  }
  if (negative) value = -value;
  if (value < std::numeric_limits<std::time_t>::min() ||
      value > std::numeric_limits<std::time_t>::max())
    return false;  // a 32-bit time_t would wrap it
  seconds = static_cast<std::time_t>(value);
  return true;
}

// Layouts 0, 1, 2, 3, 5, 7 and 8 without separators: digits and month names
// of fixed widths. Fields the text does not reach read as 0.
void readFixedWidths(int32_t layout, const char *input, DateRecord &record) {
  char a[5] = {}, b[5] = {}, c[5] = {}, gap = 0, d[3] = {}, e[3] = {}, f[3] = {};
  switch (layout) {
    case 0:
    case 1:
    case 5: std::sscanf(input, "%2c%2c%2c", a, b, c); break;
    case 2: std::sscanf(input, "%2c%3c%2c", a, b, c); break;
    case 3: std::sscanf(input, "%2c%3c%4c", a, b, c); break;
    case 7: std::sscanf(input, "%2c%3c%2c%c%2c%2c%2c", a, b, c, &gap, d, e, f); break;
    case 8: std::sscanf(input, "%2c%3c%4c%c%2c%2c%2c", a, b, c, &gap, d, e, f); break;
  }
  // The three fields in the order the layout writes them.
  int32_t *first = &record.day, *second = &record.month, *third = &record.year;
  if (layout == 0) {
    first = &record.month;
    second = &record.day;
  } else if (layout == 1) {
    first = &record.year;
    third = &record.day;
  } else if (layout == 5) {
    first = &record.hour;
    second = &record.minute;
    third = &record.second;
  }
  *first = fieldNumber(a);
  *second = layout == 0 || layout == 1 || layout == 5 ? fieldNumber(b) : fsMonthNumber(b);
  *third = fieldNumber(c);
  if (layout == 7 || layout == 8) {
    record.hour = fieldNumber(d);
    record.minute = fieldNumber(e);
    record.second = fieldNumber(f);
  }
}

// Layout 6: the stamp yyyymmddhhmmss+zzzz.
bool readStamp(const char *input, DateRecord &record) {
  char year[5] = {}, month[3] = {}, day[3] = {}, hour[3] = {}, minute[3] = {},
       second[3] = {}, zone[6] = {};
  if (std::sscanf(input, "%4c%2c%2c%2c%2c%2c%5c", year, month, day, hour, minute,
                  second, zone) < 7)
    return false;
  record.year = fieldNumber(year);
  record.month = fieldNumber(month);
  record.day = fieldNumber(day);
  record.hour = fieldNumber(hour);
  record.minute = fieldNumber(minute);
  record.second = fieldNumber(second);
  record.zone = fieldNumber(zone);
  return true;
}

// Whether the number a %d conversion read from `text` on (blanks, an
// optional sign, digits) lies in the range of an int. sscanf does not say
// when it does not, and stores some wrapped value instead.
bool fitsInt(const char *text) {
  while (ascii::isSpace(*text)) ++text;
  bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  const long long limit = negative ? -static_cast<long long>(INT_MIN) : INT_MAX;
  long long value = 0;
  for (; ascii::isDigit(*text); ++text)
    if ((value = value * 10 + (*text - '0')) > limit) return false;
  return true;
}

// Where each %d without a width began to read (%n just before it), -1 for
// those the scan did not reach; only these can meet a number beyond an int.
struct NumberStarts {
  int at[5] = {-1, -1, -1, -1, -1};
  bool allFit(const char *input) const {
    for (int start : at)
      if (start >= 0 && !fitsInt(input + start)) return false;
    return true;
  }
};

// Layouts 0 to 5, 7, 8, 10 and 11 with their separators: the number of fields
// `sscanf` filled, and the number the layout needs. A number beyond the range
// of an int makes the input unreadable.
bool readSeparated(int32_t layout, const char *input, Conversion &conversion) {
  DateRecord &r = conversion.record;
  char *dayName = conversion.dayName, *monthName = conversion.monthName;
  char s1, s2, s3, s4, s5;  // any one character separates
  int filled = 0, needed = 5;
  NumberStarts n;
  int *at = n.at;
  switch (layout) {
    case 0:
      filled = std::sscanf(input, "%n%d%c%n%d%c%n%d", &at[0], &r.month, &s1, &at[1], &r.day,
                           &s2, &at[2], &r.year);
      break;
    case 1:
      filled = std::sscanf(input, "%n%d%c%n%d%c%n%d", &at[0], &r.year, &s1, &at[1], &r.month,
                           &s2, &at[2], &r.day);
      break;
    case 2: filled = std::sscanf(input, "%2d%c%3s%c%2d", &r.day, &s1, monthName, &s2, &r.year); break;
    case 3: filled = std::sscanf(input, "%2d%c%3s%c%4d", &r.day, &s1, monthName, &s2, &r.year); break;
    case 4:
      needed = 7;
      filled = std::sscanf(input, "%3s %3s %n%d %n%d:%n%d:%n%d %n%d", dayName, monthName, &at[0],
                           &r.day, &at[1], &r.hour, &at[2], &r.minute, &at[3], &r.second,
                           &at[4], &r.year);
      break;
    case 5:
      filled = std::sscanf(input, "%n%d%c%n%d%c%n%d", &at[0], &r.hour, &s1, &at[1], &r.minute,
                           &s2, &at[2], &r.second);
      break;
    case 7:
      needed = 11;
      filled = std::sscanf(input, "%2d%c%3s%c%2d%c%n%d%c%n%d%c%n%d", &r.day, &s1, monthName,
                           &s2, &r.year, &s3, &at[0], &r.hour, &s4, &at[1], &r.minute, &s5,
                           &at[2], &r.second);
      break;
    case 8:
      needed = 11;
      filled = std::sscanf(input, "%2d%c%3s%c%4d%c%n%d%c%n%d%c%n%d", &r.day, &s1, monthName,
                           &s2, &r.year, &s3, &at[0], &r.hour, &s4, &at[1], &r.minute, &s5,
                           &at[2], &r.second);
      break;
    case 10:
      needed = 8;
      filled = std::sscanf(input, "%3s %3s %02d %02d %02d:%02d:%02d %2s", dayName, monthName,
                           &r.day, &r.year, &r.hour, &r.minute, &r.second, conversion.amPm);
      break;
    case 11:
      needed = 6;
      filled = std::sscanf(input, "%02d %3s %02d  %02d:%02d %2s", &r.day, monthName, &r.year,
                           &r.hour, &r.minute, conversion.amPm);
      break;
  }
  return filled >= needed && n.allFit(input);
}

bool readsMonthName(int32_t layout) {
  return layout == 2 || layout == 3 || layout == 4 || layout == 7 || layout == 8 ||
         layout == 10 || layout == 11;
}

}  // namespace

bool readLayout(int32_t layout, const char *input, Conversion &conversion) {
  DateRecord &record = conversion.record;
  switch (layout) {
    case 6: return readStamp(input, record);
    case 9: {
      // Seconds go through the asctime text, read as layout 4.
      std::time_t seconds;
      std::tm local;
      char text[platform::kAscTimeSize];
      return leadingSeconds(input, seconds) && platform::localTime(seconds, local) &&
             platform::ascTime(local, text) && readLayout(4, text, conversion);
    }
    case 12: return false;
  }
  bool fixedWidths = conversion.noSeparators && layout != 4 && layout != 10 && layout != 11;
  if (fixedWidths) {
    readFixedWidths(layout, input, record);
    return true;
  }
  if (!readSeparated(layout, input, conversion)) return false;
  if (readsMonthName(layout)) record.month = fsMonthNumber(conversion.monthName);
  if (layout == 10 || layout == 11) {
    strupper(conversion.amPm);
    // Added whatever the hour: 12 PM reads as hour 24. The hour has at most
    // two digits here, so this cannot overflow.
    if (std::strcmp(conversion.amPm, "PM") == 0) record.hour += 12;
  }
  return true;
}

}  // namespace fskit::datetime
