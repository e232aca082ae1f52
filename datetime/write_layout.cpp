// SPDX-License-Identifier: MIT
// Writing the output layouts of fsDateTime.
#include <cstdio>
#include <cstring>

#include <fskit/datetime.h>

#include "datetime/date_record.h"

namespace fskit::datetime {
namespace {

constexpr int kTextSize = kMaxOutputLength + 1;

// Two-digit years belong to the current century in the layouts with a full year.
int32_t fullYear(const Conversion &conversion) {
  int32_t year = conversion.record.year;
  return year <= 99 ? year + conversion.centuryBase : year;
}

// The separator text of layouts 0 to 5: the caller's, none, or the layout's own.
const char *separatorText(const Conversion &conversion, const char *own) {
  if (conversion.noSeparators) return "";
  return conversion.separators[0] != '\0' ? conversion.separators : own;
}

// The first three letters of a table name, or a name typed in the input.
struct ShortName {
  char text[4] = {};
  explicit ShortName(const char *name) {
    for (int i = 0; i < 3 && name[i] != '\0'; ++i) text[i] = name[i];
  }
};

// A valid record (month 0 to 12, day 0 to 31) always has a weekday of 1 to 7;
// anything else would name no day.
ShortName dayNameOf(const Conversion &conversion) {
  const DateRecord &r = conversion.record;
  int32_t weekday = fsWeekday(r.year, r.month, r.day);
  return ShortName(kDayNames[weekday >= 1 && weekday <= 7 ? weekday : 0]);
}

// Layouts 7 and 8: date, a blank, time. The formats are picked at run time;
// the 0 flags, which have no effect beside a precision, are kept as the
// original layouts have them.
void writeDateAndTime(int32_t layout, const Conversion &conversion, char *text) {
  const DateRecord &r = conversion.record;
  const char *month = fsMonth3name(r.month);
  int32_t year = layout == 7 ? r.year % 100 : fullYear(conversion);
  if (conversion.noSeparators) {
    const char *format = layout == 7 ? "%2.1d%3s%02.2d %02.2d%02.2d%02.2d"
                                     : "%2.1d%3s%04.4d %02.2d%02.2d%02.2d";
    std::snprintf(text, kTextSize, format, r.day, month, year, r.hour, r.minute, r.second);
    return;
  }
  char dateSeparator = '-', timeSeparator = ':';
  if (conversion.separators[0] != '\0') {
    dateSeparator = conversion.separators[0];
    if (conversion.separators[1] != '\0') timeSeparator = conversion.separators[1];
  }
  const char *format = layout == 7 ? "%2.1d%c%3s%c%02.2d%c%02.2d%c%02.2d%c%02.2d"
                                   : "%2.1d%c%3s%c%04.4d%c%02.2d%c%02.2d%c%02.2d";
  std::snprintf(text, kTextSize, format, r.day, dateSeparator, month, dateSeparator, year, ' ',
                r.hour, timeSeparator, r.minute, timeSeparator, r.second);
}

}  // namespace

void writeLayout(int32_t layout, const Conversion &conversion, char *text) {
  const DateRecord &r = conversion.record;
  switch (layout) {
    case 0:
    case 1:
    case 2:
    case 3: {
      const char *separators = separatorText(conversion, layout == 0 ? "/" : "-");
      if (layout == 0)
        std::snprintf(text, kTextSize, "%2d%s%02d%s%02d", r.month, separators, r.day,
                      separators, r.year % 100);
      else if (layout == 1)
        std::snprintf(text, kTextSize, "%2d%s%02d%s%02d", r.year % 100, separators, r.month,
                      separators, r.day);
      else if (layout == 2)
        std::snprintf(text, kTextSize, "%2d%s%3s%s%02d", r.day, separators,
                      fsMonth3name(r.month), separators, r.year % 100);
      else
        std::snprintf(text, kTextSize, "%2d%s%3s%s%4d", r.day, separators,
                      fsMonth3name(r.month), separators, fullYear(conversion));
      return;
    }
    case 4: {
      ShortName day = conversion.dayName[0] != '\0' ? ShortName(conversion.dayName)
                                                    : dayNameOf(conversion);
      ShortName month = ShortName(conversion.monthName[0] != '\0' ? conversion.monthName
                                                                  : fsMonthName(r.month));
      std::snprintf(text, kTextSize, "%3s %3s %02d %02d:%02d:%02d %4d", day.text, month.text,
                    r.day, r.hour, r.minute, r.second, fullYear(conversion));
      return;
    }
    case 5: {
      const char *separators = separatorText(conversion, ":");
      std::snprintf(text, kTextSize, "%02d%s%02d%s%02d", r.hour, separators, r.minute,
                    separators, r.second);
      return;
    }
    case 6:
      std::snprintf(text, kTextSize, "%4d%02d%02d%02d%02d%02d%+05d", fullYear(conversion),
                    r.month, r.day, r.hour, r.minute, r.second, r.zone);
      return;
    case 7:
    case 8: writeDateAndTime(layout, conversion, text); return;
    case 9:
      std::snprintf(text, kTextSize, "%lld", static_cast<long long>(dateTimeToSeconds(r)));
      return;
    case 10: {
      // The twelve-hour clock of the original: hour 12 is 12 AM and hour 0 is 00 AM.
      bool afternoon = r.hour > 12;
      std::snprintf(text, kTextSize, "%3s %3s %02d %02d %02d:%02d:%02d %2s",
                    dayNameOf(conversion).text, ShortName(fsMonthName(r.month)).text, r.day,
                    r.year, afternoon ? r.hour - 12 : r.hour, r.minute, r.second,
                    afternoon ? "PM" : "AM");
      return;
    }
  }
}

}  // namespace fskit::datetime
