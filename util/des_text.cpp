// SPDX-License-Identifier: MIT
// desEncrypt() and desDecrypt(): texts in 8-byte blocks under the library's
// fixed key, written as hexadecimal digits. An obfuscation, not protection:
// the key ships inside the library.
#include <cstring>
#include <initializer_list>

#include <fskit/util.h>

#include "platform/ascii.h"
#include "util/des.h"

namespace {

using fskit::util::des::Block;
using fskit::util::des::decipher;
using fskit::util::des::encipher;

// The library's key, word 0 then word 1. Texts written under any other key
// do not come back.
constexpr Block kKey = {0x3B5A7C19, 0xE4D2968F};

// A text this long (in digits) holds more groups than desDecrypt() takes.
constexpr size_t kMaxGroups = 128;
constexpr size_t kGroupDigits = 8;

// The subkeys are made for every call: a few hundred operations, and
// nothing that two threads would share.
fskit::util::DesSchedule librarySchedule() {
  fskit::util::DesSchedule schedule;
  makeSchedule(kKey, fskit::util::des::Rotations::library, schedule);
  return schedule;
}

// Each word takes four characters, the first in the lowest byte.
Block blockOf(const unsigned char (&c)[8]) {
  auto word = [&c](int first) {
    return uint32_t(c[first]) | uint32_t(c[first + 1]) << 8 | uint32_t(c[first + 2]) << 16 |
           uint32_t(c[first + 3]) << 24;
  };
  return {word(0), word(4)};
}

char *writeHex(char *out, uint32_t word) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  for (int shift = 28; shift >= 0; shift -= 4) *out++ = kDigits[word >> shift & 15];
  return out;
}

int hexDigit(char c) {
  if (fskit::ascii::isDigit(c)) return c - '0';
  char lower = fskit::ascii::toLower(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Reads one group as scanf's %x would: blanks, a sign, an optional 0x, then
// digits up to the first other character. No digits read as 0.
uint32_t readGroup(const char *group, size_t length) {
  const char *end = group + length;
  while (group < end && fskit::ascii::isSpace(*group)) ++group;
  bool negative = group < end && *group == '-';
  if (group < end && (*group == '-' || *group == '+')) ++group;
  if (end - group > 2 && group[0] == '0' && fskit::ascii::toLower(group[1]) == 'x' &&
      hexDigit(group[2]) >= 0)
    group += 2;
  uint32_t value = 0;
  for (; group < end && hexDigit(*group) >= 0; ++group) value = value << 4 | uint32_t(hexDigit(*group));
  return negative ? 0 - value : value;
}

}  // namespace

extern "C" {

FSKIT_API void desEncrypt(const char *text, char *out) {
  if (text == nullptr || out == nullptr) return;
  const fskit::util::DesSchedule schedule = librarySchedule();
  size_t length = std::strlen(text);
  size_t offset = 0;
  do {  // an empty text is still one block, of blanks
    unsigned char block[8];
    std::memset(block, ' ', sizeof block);
    std::memcpy(block, text + offset, length - offset < 8 ? length - offset : 8);
    Block enciphered = encipher(blockOf(block), schedule);
    out = writeHex(writeHex(out, enciphered.word0), enciphered.word1);
    offset += 8;
  } while (offset < length);
  *out = '\0';
}

FSKIT_API int32_t desDecrypt(const char *hex, char *out) {
  if (hex == nullptr || out == nullptr) return 0;
  size_t length = strnlen(hex, kMaxGroups * kGroupDigits + 1);
  size_t groups = (length + kGroupDigits - 1) / kGroupDigits;
  if (groups > kMaxGroups) return 0;
  uint32_t words[kMaxGroups];
  for (size_t g = 0; g < groups; ++g) {
    size_t start = g * kGroupDigits;
    words[g] = readGroup(hex + start, length - start < kGroupDigits ? length - start : kGroupDigits);
  }
  const fskit::util::DesSchedule schedule = librarySchedule();
  // The text ends at its first NUL or blank: blanks are the padding.
  for (size_t g = 0; g + 1 < groups; g += 2) {
    Block plain = decipher({words[g], words[g + 1]}, schedule);
    for (uint32_t word : {plain.word0, plain.word1})
      for (int shift = 0; shift < 32; shift += 8) {
        char c = char(word >> shift & 0xff);
        if (c == '\0' || c == ' ') {
          *out = '\0';
          return 1;
        }
        *out++ = c;
      }
  }
  *out = '\0';
  return 1;
}

}  // extern "C"
