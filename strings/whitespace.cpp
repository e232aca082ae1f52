// SPDX-License-Identifier: MIT
// White space: strcompress, strtrim, strcollapse, strqcollapse, strwhite.
#include <fskit/strings.h>

#include "strings/scan.h"

using fskit::ascii::isSpace;

namespace {

int32_t lengthTo(const char *begin, const char *end) { return static_cast<int32_t>(end - begin); }

// Trailing white space left by a compressed text; none remains after
// strcompress(), but strtrim() promises both ends clean on its own.
int32_t stripEnds(char *s, int32_t length) {
  int32_t begin = 0;
  while (begin < length && isSpace(s[begin])) ++begin;
  int32_t end = length;
  while (end > begin && isSpace(s[end - 1])) --end;
  for (int32_t i = begin; i < end; ++i) s[i - begin] = s[i];
  s[end - begin] = '\0';
  return end - begin;
}

}  // namespace

extern "C" {

FSKIT_API int32_t strcompress(char *s) {
  if (s == nullptr) return 0;
  const char *in = s;
  while (isSpace(*in)) ++in;
  char *out = s;
  bool inRun = false;
  for (; *in != '\0'; ++in) {
    if (!isSpace(*in)) {
      *out++ = *in;
      inRun = false;
    } else if (!inRun) {
      *out++ = ' ';
      inRun = true;
    }
  }
  // The blank written for a final run becomes the end of the text.
  if (inRun) --out;
  *out = '\0';
  return lengthTo(s, out);
}

FSKIT_API int32_t strtrim(char *s) {
  if (s == nullptr) return 0;
  return stripEnds(s, strcompress(s));
}

FSKIT_API int32_t strcollapse(char *s) {
  if (s == nullptr) return 0;
  char *out = s;
  for (const char *in = s; *in != '\0'; ++in)
    if (!isSpace(*in)) *out++ = *in;
  *out = '\0';
  return lengthTo(s, out);
}

FSKIT_API int32_t strqcollapse(char *s) {
  if (s == nullptr) return 0;
  char *out = s;
  bool quoted = false;
  for (const char *in = s; *in != '\0'; ++in) {
    if (!quoted) {
      if (*in == '"') quoted = true;
      if (!isSpace(*in)) *out++ = *in;
    } else if (*in == '"' && in[1] == '"') {
      *out++ = '"';
      ++in;
    } else {
      if (*in == '"') quoted = false;
      *out++ = *in;
    }
  }
  *out = '\0';
  return lengthTo(s, out);
}

FSKIT_API int strwhite(const char *s) {
  for (s = fskit::strings::text(s); *s != '\0'; ++s)
    if (!isSpace(*s)) return 0;
  return 1;
}

}  // extern "C"
