// SPDX-License-Identifier: MIT
// fsDateTime: reads a date/time text in one layout and writes it in another.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include <fskit/datetime.h>

#include "datetime/conversion_internal.h"
#include "datetime/date_record.h"

using namespace fskit::datetime;

namespace {

constexpr int32_t kLastInputLayout = 12;
constexpr int32_t kLastOutputLayout = 10;

// A message on standard error, or appended to `problems` when the caller
// collects them.
__attribute__((format(printf, 2, 3))) void report(std::string *problems, const char *format, ...) {
  va_list args;
  va_start(args, format);
  if (problems == nullptr) {
    std::vfprintf(stderr, format, args);
  } else {
    char text[128];
    int length = std::vsnprintf(text, sizeof text, format, args);
    if (length >= 0) problems->append(text, std::min(size_t(length), sizeof text - 1));
  }
  va_end(args);
}

void takeSeparators(const char *separators, Conversion &conversion) {
  if (separators == nullptr) return;
  if (std::strcmp(separators, "NONE") == 0)
    conversion.noSeparators = true;
  else
    std::strncpy(conversion.separators, separators, sizeof conversion.separators - 1);
}

// Hours, minutes and seconds are not checked: the layouts print whatever they are.
bool isValidDate(const DateRecord &record) {
  return record.year >= 0 && record.month >= 0 && record.month <= 12 && record.day >= 0 &&
         record.day <= 31;
}

// Reads the input into the conversion; false when it gives no valid date.
bool readInput(int32_t inLayout, const char *input, Conversion &conversion,
               std::string *problems) {
  if (input == nullptr) return dateTimeNow(conversion.record, conversion.centuryBase);
  if (inLayout < 0 || inLayout > kLastInputLayout) {
    report(problems, "Unsupported date/time input format %d\n", inLayout);
    return false;
  }
  return readLayout(inLayout, input, conversion) && isValidDate(conversion.record);
}

}  // namespace

int32_t fskit::datetime::convertDateTime(int32_t inLayout, const char *input, int32_t outLayout,
                                         char *output, const char *separators, int32_t useNow,
                                         std::string *problems) {
  if (output == nullptr) return 0;
  Conversion conversion;
  // The century base is always today's; the record keeps today's date only
  // when the caller wants it to fill what the input lacks.
  dateTimeNow(conversion.record, conversion.centuryBase);
  if (useNow == 0) conversion.record = DateRecord{};
  takeSeparators(separators, conversion);

  // With useNow, an input that gives no valid date is replaced by the current
  // time; only the record is replaced, so a day or month name that was read
  // before the input failed still names the day and month in layout 4.
  if (!readInput(inLayout, input, conversion, problems) &&
      (useNow == 0 || !dateTimeNow(conversion.record, conversion.centuryBase))) {
    // Not through report(): the input may be of any length.
    const char *text = input != nullptr ? input : "";
    if (problems == nullptr)
      std::fprintf(stderr, "Unable to generate valid input date from: %s\n", text);
    else
      *problems += std::string("Unable to generate valid input date from: ") + text + "\n";
    return 0;
  }

  if (outLayout < 0 || outLayout > kLastOutputLayout) {
    output[0] = '\0';
    report(problems, "Unsupported date/time output format %d", outLayout);
    return 0;
  }
  char text[kMaxOutputLength + 1];
  writeLayout(outLayout, conversion, text);
  std::strcpy(output, text);
  return 1;
}

extern "C" FSKIT_API int32_t fsDateTime(int32_t inLayout, const char *input, int32_t outLayout,
                                        char *output, const char *separators, int32_t useNow) {
  return fskit::datetime::convertDateTime(inLayout, input, outLayout, output, separators, useNow,
                                          nullptr);
}
