// SPDX-License-Identifier: MIT
// fsDateTime: reads a date/time text in one layout and writes it in another.
#include <cstdio>
#include <cstring>

#include <fskit/datetime.h>

#include "datetime/date_record.h"

using namespace fskit::datetime;

namespace {

constexpr int32_t kLastInputLayout = 12;
constexpr int32_t kLastOutputLayout = 10;

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
bool readInput(int32_t inLayout, const char *input, Conversion &conversion) {
  if (input == nullptr) return dateTimeNow(conversion.record, conversion.centuryBase);
  if (inLayout < 0 || inLayout > kLastInputLayout) {
    std::fprintf(stderr, "Unsupported date/time input format %d\n", inLayout);
    return false;
  }
  return readLayout(inLayout, input, conversion) && isValidDate(conversion.record);
}

}  // namespace

extern "C" FSKIT_API int32_t fsDateTime(int32_t inLayout, const char *input, int32_t outLayout,
                                        char *output, const char *separators, int32_t useNow) {
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
  if (!readInput(inLayout, input, conversion) &&
      (useNow == 0 || !dateTimeNow(conversion.record, conversion.centuryBase))) {
    std::fprintf(stderr, "Unable to generate valid input date from: %s\n",
                 input != nullptr ? input : "");
    return 0;
  }

  if (outLayout < 0 || outLayout > kLastOutputLayout) {
    output[0] = '\0';
    std::fprintf(stderr, "Unsupported date/time output format %d", outLayout);
    return 0;
  }
  char text[kMaxOutputLength + 1];
  writeLayout(outLayout, conversion, text);
  std::strcpy(output, text);
  return 1;
}
