// SPDX-License-Identifier: MIT
// Reading an element file into records.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

#include <fskit/strings.h>

#include "chemistry/chemistry.h"
#include "platform/ascii.h"

namespace fskit::chemistry {
namespace {

// Lines are read in pieces of at most 131 characters, so a longer line
// reaches the reader as several.
constexpr int kLineSize = 132;
constexpr int32_t kMaxFields = 15;
constexpr size_t kFieldSize = 20;  // 19 characters and a NUL

// The fields of one line, each cut to 19 characters; missing ones are empty.
class LineFields {
 public:
  explicit LineFields(const char *line) {
    char *starts[kMaxFields];
    int32_t lengths[kMaxFields];
    // A carriage return separates too, so that a file written with Windows
    // line ends reads as it does there, where text mode drops the CR.
    count_ = strqtoks(line, " \t\r\n", kMaxFields, starts, lengths);
    if (count_ < 1) return;
    column_ = starts[0] - line;
    for (int32_t i = 0; i < count_; ++i) {
      size_t length = std::min(size_t(lengths[i]), kFieldSize - 1);
      std::memcpy(fields_[i], starts[i], length);
      fields_[i][length] = '\0';
    }
    header_ = std::string_view(starts[0], size_t(lengths[0])) == "Element" ||
              std::string_view(starts[0], size_t(lengths[0])) == "Atomic";
  }

  int32_t count() const { return count_; }
  // Position of the first field: 0 or 1 starts an element, more an isotope.
  ptrdiff_t column() const { return column_; }
  bool isHeader() const { return header_; }
  const char *operator[](int32_t i) const { return i < count_ ? fields_[i] : ""; }

 private:
  int32_t count_ = 0;
  ptrdiff_t column_ = 0;
  bool header_ = false;
  char fields_[kMaxFields][kFieldSize];
};

// The leading integer of a text, as atoi reads it, in the low 32 bits.
int32_t leadingInteger(const char *text) {
  while (ascii::isSpace(*text)) ++text;
  bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  uint32_t value = 0;
  for (; ascii::isDigit(*text); ++text) value = value * 10u + uint32_t(*text - '0');
  return int32_t(negative ? 0u - value : value);
}

// The power of ten of the first significant digit of the unsigned decimal
// number in [text, end), its exponent included (1.5e3: 3, 0.02: -2). It
// tells a number too large for a double (above 0) from one too small.
long decimalOrder(const char *text, const char *end) {
  long order = 0;
  bool significant = false;
  const char *p = text;
  for (; p < end && ascii::isDigit(*p); ++p) {
    if (significant) ++order;
    else if (*p != '0') significant = true;
  }
  if (p < end && *p == '.') {
    for (++p; p < end && ascii::isDigit(*p); ++p) {
      if (significant) continue;
      --order;
      if (*p != '0') significant = true;
    }
  }
  if (p < end && (*p == 'e' || *p == 'E')) {
    ++p;
    bool negative = p < end && *p == '-';
    if (p < end && (*p == '-' || *p == '+')) ++p;
    long exponent = 0;
    for (; p < end && ascii::isDigit(*p); ++p)
      if (exponent < 100000) exponent = exponent * 10 + (*p - '0');
    order += negative ? -exponent : exponent;
  }
  return order;
}

// The leading decimal number of a text, as atof reads it in the C locale:
// white space, a sign, digits with an optional point, an optional exponent.
// Only a digit, or a point and a digit, begins a number: "inf" and "nan"
// read as 0, and "0x10" as its leading 0. A number beyond the range of a
// double reads as infinity, one too small for it as 0.
double leadingDecimal(const char *text) {
  while (ascii::isSpace(*text)) ++text;
  bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  if (!ascii::isDigit(*text) && !(*text == '.' && ascii::isDigit(text[1]))) return 0.0;
  double value = 0.0;
  auto [stop, error] = std::from_chars(text, text + std::strlen(text), value);
  if (error == std::errc::result_out_of_range)
    value = decimalOrder(text, stop) > 0 ? HUGE_VAL : 0.0;
  return negative ? -value : value;
}

// An isotope's mass number: the digits its label begins with.
int32_t massNumberOf(const char (&label)[8]) {
  int32_t value = 0;
  for (size_t i = 0; i < sizeof label && ascii::isDigit(label[i]); ++i)
    value = value * 10 + (label[i] - '0');
  return value;
}

// Copies at most size - 1 characters and pads with NULs.
template <size_t N>
void copyText(char (&to)[N], const char *from, size_t size = N) {
  std::memset(to, 0, N);
  std::memcpy(to, from, strnlen(from, size - 1));
}

// The label field keeps 8 characters, without a NUL when it needs all 8.
void copyLabel(char (&to)[8], const char *from) {
  std::memset(to, 0, sizeof to);
  std::memcpy(to, from, strnlen(from, sizeof to));
}

// Mass number, nominal mass and isotopeShift of an isotope record; d counts
// from the element's reference mass number, and 0 is kept for elements.
void placeIsotope(FsElementRecord &isotope, int32_t referenceMass) {
  int32_t massNumber = massNumberOf(isotope.label);
  int64_t d = int64_t(massNumber) - referenceMass;
  isotope.nominalMass = int16_t(massNumber);
  isotope.isotopeShift = int8_t(d >= 0 ? d + 1 : d);
}

void fillIsotope(FsElementRecord &isotope, const FsElementRecord &element,
                 const char *label, const char *mass, const char *abundance) {
  isotope = FsElementRecord{};
  std::memcpy(isotope.symbol, element.symbol, sizeof isotope.symbol);
  isotope.atomicNumber = element.atomicNumber;
  isotope.auxValue = element.auxValue;
  isotope.rdbFactor = element.rdbFactor;
  copyLabel(isotope.label, label);
  isotope.monoMass = leadingDecimal(mass);
  isotope.averageMass = isotope.monoMass;
  isotope.abundance = leadingDecimal(abundance);
}

}  // namespace

int32_t readElementFile(std::FILE *file, FsElementRecord *records, int32_t &filled) {
  char line[kLineSize];
  filled = 0;
  int32_t &count = filled;  // the records read so far
  int32_t element = -1;  // the current element's record
  int32_t referenceMass = 0;
  while (std::fgets(line, sizeof line, file) != nullptr) {
    LineFields fields(line);
    if (fields.count() < 1 || fields.isHeader()) continue;
    if (fields.column() <= 1) {
      // An element needs two records: itself and its first isotope.
      if (count + 2 > kCapacity) return -1;
      FsElementRecord &record = records[count];
      record = FsElementRecord{};
      copyText(record.symbol, fields[0]);
      copyLabel(record.label, fields[0]);
      record.atomicNumber = int16_t(leadingInteger(fields[1]));
      record.averageMass = leadingDecimal(fields[2]);
      referenceMass = leadingInteger(fields[3]);
      record.nominalMass = int16_t(referenceMass);
      record.abundance = 100.0;
      record.auxValue = uint8_t(leadingInteger(fields[8]));
      record.rdbFactor = int8_t(leadingInteger(fields[9]));
      FsElementRecord &first = records[count + 1];
      fillIsotope(first, record, fields[5], fields[6], fields[7]);
      placeIsotope(first, referenceMass);
      // Without an isotope of the reference mass number the first one's
      // mass stands in; an isotope of that number replaces it.
      record.monoMass = first.monoMass;
      element = count;
      count += 2;
    } else {
      if (element < 0) continue;  // no element to add the isotope to
      FsElementRecord &isotope = records[count];
      fillIsotope(isotope, records[element], fields[0], fields[1], fields[2]);
      placeIsotope(isotope, referenceMass);
      if (massNumberOf(isotope.label) == referenceMass)
        records[element].monoMass = isotope.monoMass;
      count += 1;
    }
    if (count >= kCapacity) return -1;
  }
  return count;
}

}  // namespace fskit::chemistry
