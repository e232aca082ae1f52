// SPDX-License-Identifier: MIT
// strcvtesc: backslash escapes to the characters they stand for.
#include <fskit/strings.h>

#include "strings/scan.h"

using fskit::ascii::isDigit;
using fskit::ascii::isXDigit;
using fskit::ascii::toLower;

namespace {

// The character a one-letter escape stands for; any other character stands
// for itself.
char simpleEscape(char c) {
  switch (c) {
    case 'a': return '\a';
    case 'b': return '\b';
    case 'f': return '\f';
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    case 'v': return '\v';
    default: return c;
  }
}

bool isOctal(char c) { return c >= '0' && c <= '7'; }

uint32_t hexValue(char c) {
  return isDigit(c) ? uint32_t(c - '0') : uint32_t(toLower(c) - 'a' + 10);
}

}  // namespace

extern "C" {

// Every escape takes at least two characters of `src` and gives one, so the
// write position never passes the read position and `dst` may be `src`.
// Numbers have no digit limit; the value wraps and its low 8 bits count.
FSKIT_API char *strcvtesc(char *dst, const char *src) {
  if (dst == nullptr) return nullptr;
  src = fskit::strings::text(src);
  char *out = dst;
  while (*src != '\0') {
    if (*src != '\\') {
      *out++ = *src++;
      continue;
    }
    const char kind = src[1];
    if (kind == '\0') break;  // a lone final backslash is dropped
    src += 2;
    uint32_t value = 0;
    if (isOctal(kind)) {
      value = uint32_t(kind - '0');
      while (isOctal(*src)) value = value * 8 + uint32_t(*src++ - '0');
    } else if (kind == 'x') {
      while (isXDigit(*src)) value = value * 16 + hexValue(*src++);
    } else {
      value = static_cast<unsigned char>(simpleEscape(kind));
    }
    *out++ = static_cast<char>(value & 0xFF);
  }
  *out = '\0';
  return dst;
}

}  // extern "C"
