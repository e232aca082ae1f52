// SPDX-License-Identifier: MIT
// Helpers shared by the string functions: null-tolerant reading, signed-byte
// views and delimiter sets.
#pragma once

#include <cstdint>

#include "platform/ascii.h"

namespace fskit::strings {

// A null text reads as the empty text, so that no function crashes on one.
constexpr const char *text(const char *s) { return s != nullptr ? s : ""; }

// The value of a byte taken as a signed 8-bit number, which is how the
// comparisons and the blank test of fields see it.
constexpr int32_t signedValue(char c) { return static_cast<signed char>(c); }

// A set of characters looked up in constant time; the NUL is never a member,
// so a scan that meets the end of a text never mistakes it for a delimiter.
class CharSet {
 public:
  explicit CharSet(const char *chars) {
    for (const char *c = text(chars); *c != '\0'; ++c) member_[ascii::byte(*c)] = true;
  }
  bool contains(char c) const { return member_[ascii::byte(c)]; }

 private:
  bool member_[256] = {};
};

}  // namespace fskit::strings
