// SPDX-License-Identifier: MIT
// stringHash: a hash of a text for a table of a given size.
#include <cstring>

#include <fskit/strings.h>

#include "strings/scan.h"

using fskit::strings::signedValue;

extern "C" {

// Each step mixes a character with its two successors (wrapping round the
// text) in 32-bit arithmetic, then reduces by the table size; the arithmetic
// is unsigned so that overflow wraps as two's complement does.
FSKIT_API uint32_t stringHash(const char *s, uint32_t n) {
  s = fskit::strings::text(s);
  const size_t length = std::strlen(s);
  if (length == 0) return 1;
  uint32_t hash = 0;
  for (size_t i = 0; i < length; ++i) {
    const auto c0 = static_cast<uint32_t>(signedValue(s[i]));
    const auto c1 = static_cast<uint32_t>(signedValue(s[(i + 1) % length]));
    const auto c2 = static_cast<uint32_t>(signedValue(s[(i + 2) % length]));
    hash = c0 * c1 + 107u * c1 * c2 + 10009u * c0 * c2 + hash;
    if (n != 0) hash %= n;
  }
  return hash;
}

}  // extern "C"
