// SPDX-License-Identifier: MIT
// Copies with a change of case, and case changes in place.
#include <fskit/strings.h>

#include "strings/scan.h"

using fskit::ascii::toLower;
using fskit::ascii::toUpper;
using fskit::strings::text;

namespace {

template <char (*convert)(char)>
char *copyConverted(char *dst, const char *src) {
  if (dst == nullptr) return nullptr;
  src = text(src);
  char *out = dst;
  while ((*out++ = convert(*src++)) != '\0') {
  }
  return dst;
}

template <char (*convert)(char)>
char *convertInPlace(char *s) {
  if (s == nullptr) return nullptr;
  for (char *c = s; *c != '\0'; ++c) *c = convert(*c);
  return s;
}

}  // namespace

extern "C" {

FSKIT_API char *strcpyl(char *dst, const char *src) { return copyConverted<toLower>(dst, src); }
FSKIT_API char *strcpyu(char *dst, const char *src) { return copyConverted<toUpper>(dst, src); }
FSKIT_API char *strlower(char *s) { return convertInPlace<toLower>(s); }
FSKIT_API char *strupper(char *s) { return convertInPlace<toUpper>(s); }

FSKIT_API char *strncpyl(char *dst, const char *src, int32_t n) {
  if (dst == nullptr) return nullptr;
  src = text(src);
  for (int32_t i = 0; i < n; ++i)
    if ((dst[i] = toLower(src[i])) == '\0') break;
  return dst;
}

}  // extern "C"
