// SPDX-License-Identifier: MIT
// Removing and replacing: strremove, strreplace, strRemOuter.
#include <cstring>

#include <fskit/strings.h>

#include "strings/scan.h"

using fskit::strings::CharSet;
using fskit::strings::text;

extern "C" {

FSKIT_API int32_t strremove(char *s, const char *chars) {
  if (s == nullptr) return 0;
  const CharSet removed(chars);
  char *out = s;
  for (const char *in = s; *in != '\0'; ++in)
    if (!removed.contains(*in)) *out++ = *in;
  *out = '\0';
  return static_cast<int32_t>(out - s);
}

FSKIT_API int32_t strreplace(char *dst, const char *src, const char *find, const char *repl) {
  if (dst == nullptr) return 0;
  src = text(src);
  repl = text(repl);
  const size_t findLength = std::strlen(text(find)), replLength = std::strlen(repl);
  char *out = dst;
  if (findLength != 0) {
    // Each search starts after the previous occurrence, so replaced text is
    // never searched again and the whole pass stays linear.
    while (const char *hit = std::strstr(src, find)) {
      std::memcpy(out, src, static_cast<size_t>(hit - src));
      out += hit - src;
      std::memcpy(out, repl, replLength);
      out += replLength;
      src = hit + findLength;
    }
  }
  const size_t rest = std::strlen(src);
  std::memcpy(out, src, rest + 1);
  return static_cast<int32_t>(out + rest - dst);
}

FSKIT_API char *strRemOuter(char *dst, const char *src, char open, char close) {
  if (dst == nullptr) return nullptr;
  src = text(src);
  const size_t length = std::strlen(src);
  // An opening character in last place, or a closing one in first place,
  // encloses nothing and does not count.
  const char *first = std::strchr(src, open);
  const char *last = std::strrchr(src, close);
  size_t begin = 0, end = length;
  if (open != '\0' && first != nullptr && first + 1 < src + length) begin = first - src + 1;
  if (close != '\0' && last != nullptr && last > src) end = last - src;
  if (begin > end) begin = end;
  std::memmove(dst, src + begin, end - begin);
  dst[end - begin] = '\0';
  return dst;
}

}  // extern "C"
