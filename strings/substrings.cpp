// SPDX-License-Identifier: MIT
// Substrings: strleft, strmid, strright, strextract, strrepeat, strreverse.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include <fskit/strings.h>

#include "strings/scan.h"

using fskit::strings::CharSet;
using fskit::strings::text;

namespace {

// Copies `length` bytes and a NUL; the two may overlap.
char *copyPart(char *dst, const char *from, size_t length) {
  std::memmove(dst, from, length);
  dst[length] = '\0';
  return dst;
}

}  // namespace

extern "C" {

FSKIT_API char *strleft(char *dst, const char *src, uint32_t n) {
  if (dst == nullptr) return nullptr;
  src = text(src);
  return copyPart(dst, src, strnlen(src, n));
}

FSKIT_API char *strmid(char *dst, const char *src, uint32_t from, uint32_t to) {
  if (dst == nullptr) return nullptr;
  src = text(src);
  // Only the bytes up to `to` are looked at, so a short `src` is never overrun.
  // (to + 1 is counted in 64 bits: it must not wrap to 0 where size_t has 32.)
  size_t end = strnlen(src, static_cast<size_t>(std::min<uint64_t>(uint64_t{to} + 1, SIZE_MAX)));
  if (from > to || from > end) return copyPart(dst, src, 0);
  return copyPart(dst, src + from, end - from);
}

FSKIT_API char *strright(char *dst, const char *src, int32_t start) {
  if (dst == nullptr) return nullptr;
  src = text(src);
  size_t from = start < 0 ? 0 : strnlen(src, static_cast<size_t>(start));
  return copyPart(dst, src + from, std::strlen(src + from));
}

FSKIT_API char *strextract(char *dst, const char *src, const char *openChars,
                           const char *closeChars) {
  if (dst == nullptr) return nullptr;
  src = text(src);
  const CharSet opening(openChars), closing(closeChars);
  const char *open = src;
  while (*open != '\0' && !opening.contains(*open)) ++open;
  if (*open == '\0') return copyPart(dst, src, 0);
  const char *begin = open + 1, *end = begin;
  while (*end != '\0' && !closing.contains(*end)) ++end;
  return copyPart(dst, begin, static_cast<size_t>(end - begin));
}

FSKIT_API char *strrepeat(char *dst, const char *src, int32_t n) {
  if (dst == nullptr || n < 1) return dst;
  src = text(src);
  size_t length = std::strlen(src);
  for (int32_t i = 0; i < n; ++i) std::memmove(dst + i * length, src, length);
  dst[n * length] = '\0';
  return dst;
}

FSKIT_API char *strreverse(char *s) {
  if (s == nullptr) return nullptr;
  std::reverse(s, s + std::strlen(s));
  return s;
}

}  // extern "C"
