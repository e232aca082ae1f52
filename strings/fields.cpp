// SPDX-License-Identifier: MIT
// Fixed lengths and fields: strncpyn, strncpyp, strncpyb, strnpad, strcenter,
// strfcpy.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <fskit/strings.h>

#include "strings/scan.h"

using fskit::strings::signedValue;
using fskit::strings::text;

namespace {

// Blank in a field: the blank, every control character and NUL, and, since
// the byte is read as a signed value, every byte from 0x80 up.
bool isFieldBlank(char c) { return signedValue(c) <= ' '; }

}  // namespace

extern "C" {

FSKIT_API char *strncpyn(char *dst, const char *src, uint32_t n) {
  if (dst == nullptr || n == 0) return dst;
  src = text(src);
  size_t length = strnlen(src, n - 1);
  std::memmove(dst, src, length);
  std::memset(dst + length, '\0', n - length);
  return dst;
}

FSKIT_API char *strncpyp(char *dst, const char *src, int32_t n, char pad) {
  if (dst == nullptr || n <= 0) return dst;
  src = text(src);
  size_t length = strnlen(src, static_cast<size_t>(n));
  std::memmove(dst, src, length);
  std::memset(dst + length, pad, static_cast<size_t>(n) - length);
  return dst;
}

FSKIT_API char *strncpyb(char *dst, const char *src, int32_t n) {
  if (dst == nullptr || n <= 0) return dst;
  if (src == nullptr) {  // no field: the empty text, nothing read
    dst[0] = '\0';
    return dst;
  }
  // The whole field is read, whatever NUL it holds, to find its last
  // non-blank byte.
  int32_t used = n;
  while (used > 0 && isFieldBlank(src[used - 1])) --used;
  for (int32_t i = 0; i < used; ++i)
    if ((dst[i] = src[i]) == '\0') return dst;
  if (used < n) dst[used] = '\0';
  return dst;
}

FSKIT_API char *strnpad(char *s, uint32_t n, char pad) {
  if (s == nullptr) return nullptr;
  size_t length = strnlen(s, n);
  if (length < n) {
    std::memset(s + length, pad, n - length);
    s[n] = '\0';
  }
  return s;
}

FSKIT_API char *strcenter(char *dst, const char *src, uint32_t width) {
  if (dst == nullptr) return nullptr;
  src = text(src);
  size_t length = std::strlen(src);
  size_t blanks = width > length ? (width - length) / 2 : 0;
  // Text first, blanks after, so that `dst` may be `src`.
  std::memmove(dst + blanks, src, length + 1);
  std::memset(dst, ' ', blanks);
  return dst;
}

FSKIT_API char *strfcpy(char *dst, uint32_t dstSize, const char *src, uint32_t srcLen) {
  if (dst == nullptr || dstSize == 0) return dst;
  // The work copy holds the text as far as the field goes, not the whole
  // field: a short text in a field said to be huge costs nothing.
  src = text(src);
  const size_t length = strnlen(src, srcLen);
  char *work = static_cast<char *>(std::malloc(length + 1));
  if (work == nullptr) return nullptr;
  std::memcpy(work, src, length);
  work[length] = '\0';
  strcompress(work);
  strtrim(work);
  // strncpy pads with NULs up to the count; the count never exceeds the
  // field's own length, so a short field writes no more than it holds.
  const size_t count = std::min<size_t>(dstSize - 1, srcLen);
  std::strncpy(dst, work, count);
  dst[count] = '\0';
  std::free(work);
  return dst;
}

}  // extern "C"
