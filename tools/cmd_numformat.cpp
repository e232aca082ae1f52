// SPDX-License-Identifier: MIT
// fskit convert: foreign numbers to text and back, one value per argument or
// a whole binary file of them.
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <fskit/numformat.h>

#include "platform/ascii.h"
#include "tools/command.h"

namespace fskit::tool {

namespace {

constexpr std::string_view kCommand = "convert";

// Shortest text that reads back as the same number ("inf", "nan" included).
template <typename T>
std::string numberText(T value) {
  char text[64];
  auto result = std::to_chars(text, text + sizeof text, value);
  return std::string(text, result.ptr);
}

// The whole of `text` as a number of type T, or false.
template <typename T>
bool parseNumber(std::string_view text, T &value) {
  auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

template <typename T>
T valueAt(const unsigned char *bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

// Decodes `in` (a copy the converter may change) into text.
template <typename T, auto convert>
std::string decodeTo(unsigned char *in) {
  unsigned char out[8];
  convert(in, out);
  return numberText(valueAt<T>(out));
}

std::string decodeRecord(unsigned char *in) {
  double mass;
  float intensity;
  uint8_t flags;
  decodeQuorMassInty(in, &mass, &intensity, &flags);
  return numberText(mass) + " " + numberText(intensity) + " " + numberText(int(flags));
}

// Reads `text` as T and encodes it into `out`.
template <typename T, auto convert>
bool encodeFrom(std::string_view text, unsigned char *out) {
  T value;
  if (!parseNumber(text, value)) {
    double wide;  // a single out of range still shows how it saturates
    if (!parseNumber(text, wide)) return false;
    value = static_cast<T>(wide);
  }
  convert(&value, out);
  return true;
}

// Whole numbers in the signed or the unsigned range of the word.
template <typename Unsigned, auto convert>
bool encodeWord(std::string_view text, unsigned char *out) {
  using Signed = std::make_signed_t<Unsigned>;
  long long value;
  if (!parseNumber(text, value) || value < std::numeric_limits<Signed>::min() ||
      value > static_cast<long long>(std::numeric_limits<Unsigned>::max()))
    return false;
  auto word = static_cast<Unsigned>(value);
  convert(&word, out);
  return true;
}

// "MASS,INTENSITY" or "MASS,INTENSITY,FLAGS" with flags 0 to 3.
bool encodeRecord(std::string_view text, unsigned char *out) {
  size_t first = text.find(','), second = text.find(',', first + 1);
  if (first == std::string_view::npos) return false;
  double mass;
  float intensity;
  int flags = 0;
  std::string_view flagsText = second == std::string_view::npos ? "0" : text.substr(second + 1);
  if (!parseNumber(text.substr(0, first), mass) ||
      !parseNumber(text.substr(first + 1, second - first - 1), intensity) ||
      !parseNumber(flagsText, flags) || flags < 0 || flags > 3)
    return false;
  uint8_t flagsByte = uint8_t(flags);
  encodeQuorMassInty(&mass, &intensity, &flagsByte, out);
  return true;
}

struct Format {
  std::string_view name;
  size_t size;
  std::string (*decode)(unsigned char *bytes);
  bool (*encode)(std::string_view text, unsigned char *bytes);  // null: decode only
  const char *numberForm;  // what --encode takes
};

constexpr Format kFormats[] = {
    {"vaxf", 4, decodeTo<float, decodeVaxFloat>, encodeFrom<float, encodeVaxFloat>,
     "a number"},
    {"vaxd", 8, decodeTo<double, decodeVaxDouble>, encodeFrom<double, encodeVaxDouble>,
     "a number"},
    {"hpshort", 2, decodeTo<uint16_t, decodeHpShort>, encodeWord<uint16_t, encodeHpShort>,
     "a whole number from -32768 to 65535"},
    {"hplong", 4, decodeTo<uint32_t, decodeHpLong>, encodeWord<uint32_t, encodeHpLong>,
     "a whole number from -2147483648 to 4294967295"},
    {"hpdouble", 8, decodeTo<double, decodeHpDouble>, encodeFrom<double, encodeHpDouble>,
     "a number"},
    {"novaf", 4, decodeTo<float, decodeNovaFloat>, nullptr, nullptr},
    {"novad", 8, decodeTo<double, decodeNovaDouble>, nullptr, nullptr},
    {"incos", 2, decodeTo<float, decodeIncosMagMass>, nullptr, nullptr},
    {"quorinty", 2, decodeTo<float, decodeQuorInty>, encodeFrom<float, encodeQuorInty>,
     "a number"},
    {"quorrec", 6, decodeRecord, encodeRecord, "MASS,INTENSITY[,FLAGS] with flags 0 to 3"},
};

const Format *findFormat(std::string_view name) {
  for (const Format &format : kFormats)
    if (format.name == name) return &format;
  return nullptr;
}

int unknownFormat(std::string_view name) {
  return usageError(kCommand, "unknown format '" + std::string(name) +
                                  "' (vaxf, vaxd, hpshort, hplong, hpdouble, novaf, "
                                  "novad, incos, quorinty, quorrec)");
}

int hexDigit(char c) {
  if (ascii::isDigit(c)) return c - '0';
  return ascii::toLower(c) - 'a' + 10;
}

// Hexadecimal bytes in memory order, blanks allowed between them.
bool parseHex(std::string_view text, size_t size, unsigned char *out) {
  std::string digits;
  for (char c : text) {
    if (ascii::isSpace(c)) continue;
    if (!ascii::isXDigit(c)) return false;
    digits += c;
  }
  if (digits.size() != 2 * size) return false;
  for (size_t i = 0; i < size; ++i)
    out[i] = uint8_t(hexDigit(digits[2 * i]) << 4 | hexDigit(digits[2 * i + 1]));
  return true;
}

std::string hexText(const unsigned char *bytes, size_t size) {
  std::string text;
  char pair[4];
  for (size_t i = 0; i < size; ++i) {
    std::snprintf(pair, sizeof pair, i == 0 ? "%02X" : " %02X", bytes[i]);
    text += pair;
  }
  return text;
}

int decodeValues(const Format &format, const std::vector<std::string> &values, bool json) {
  // Every value is checked before the table starts: a usage error prints nothing.
  unsigned char bytes[8];
  for (const std::string &value : values)
    if (!parseHex(value, format.size, bytes))
      return usageError(kCommand, std::string(format.name) + " takes " +
                                      std::to_string(format.size) + " bytes in hexadecimal, not '" +
                                      value + "'");
  Table table(json, {{"bytes"}, {"value"}});
  for (const std::string &value : values) {
    parseHex(value, format.size, bytes);  // afresh: decoding may change the copy
    std::string hex = hexText(bytes, format.size);
    table.row({hex, format.decode(bytes)});
  }
  return kOk;
}

int encodeValues(const Format &format, const std::vector<std::string> &values, bool json) {
  if (format.encode == nullptr)
    return usageError(kCommand, "the library only decodes " + std::string(format.name));
  unsigned char bytes[8];
  for (const std::string &value : values)
    if (!format.encode(value, bytes))
      return usageError(kCommand, std::string(format.name) + " takes " + format.numberForm +
                                      ", not '" + value + "'");
  Table table(json, {{"number"}, {"bytes"}});
  for (const std::string &value : values) {
    format.encode(value, bytes);
    table.row({value, hexText(bytes, format.size)});
  }
  return kOk;
}

// Every whole value of the file, one per line; bytes left over at the end
// are reported, after everything before them has been printed.
int decodeFile(const Format &format, const std::string &path, bool json) {
  bool fromStdin = path == "-";
  std::string name = fromStdin ? "standard input" : path;
  std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(
      fromStdin ? nullptr : std::fopen(path.c_str(), "rb"), std::fclose);
  if (!fromStdin && !file) return systemFailure(kCommand, "cannot open " + path, errno);
  std::FILE *stream = fromStdin ? stdin : file.get();
  Table table(json, {{"offset", true}, {"value"}});
  std::vector<unsigned char> block(format.size * 8192);
  size_t leftOver = 0, offset = 0;
  while (size_t count = std::fread(block.data(), 1, block.size(), stream)) {
    for (size_t at = 0; at + format.size <= count; at += format.size)
      table.row({std::to_string(offset + at), format.decode(block.data() + at)});
    leftOver = count % format.size;
    offset += count;
  }
  if (std::ferror(stream)) return systemFailure(kCommand, "cannot read " + name, errno);
  if (leftOver != 0)
    return failure(kCommand, name + ": " + std::to_string(leftOver) +
                                 (leftOver == 1 ? " byte" : " bytes") + " left at the end, not a whole " +
                                 std::string(format.name) + " value");
  return kOk;
}

}  // namespace

int runConvert(std::vector<std::string> &args) {
  bool encode = takeFlag(args, "--encode");
  bool json = takeFlag(args, "--json");
  bool missing = false;
  auto path = takeOption(args, "--file", missing);
  auto formatName = takeOption(args, "--format", missing);
  if (missing) return usageError(kCommand, "--file and --format need a value");
  if (auto unknown = unknownOption(args)) return usageError(kCommand, "unknown option " + *unknown);
  if (!args.empty() && args.front() == "--") args.erase(args.begin());

  if (path) {
    if (encode || !args.empty() || !formatName)
      return usageError(kCommand, "--file takes --format FORMAT and nothing else");
    const Format *format = findFormat(*formatName);
    return format != nullptr ? decodeFile(*format, *path, json) : unknownFormat(*formatName);
  }
  if (formatName) args.insert(args.begin(), *formatName);
  if (args.size() < 2) return usageError(kCommand, "needs a format and at least one value");
  const Format *format = findFormat(args.front());
  if (format == nullptr) return unknownFormat(args.front());
  std::vector<std::string> values(args.begin() + 1, args.end());
  return encode ? encodeValues(*format, values, json) : decodeValues(*format, values, json);
}

}  // namespace fskit::tool
