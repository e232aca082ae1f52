// SPDX-License-Identifier: MIT
// Searching and comparing: stridx, striidx, strcmps, stricmps.
#include <cstring>

#include <fskit/strings.h>

#include "strings/scan.h"

using fskit::ascii::toUpper;
using fskit::strings::signedValue;
using fskit::strings::text;

namespace {

char same(char c) { return c; }

// The next character of `c` on that a match can begin, or null. While no
// partial match is under way nothing else changes the pass's state, so the
// library's fast character search can skip ahead.
template <char (*fold)(char)>
const char *nextCandidate(const char *c, char first) {
  if (fold == same || !fskit::ascii::isAlpha(first)) return std::strchr(c, first);
  const char bothCases[] = {first, fskit::ascii::toLower(first), '\0'};
  return std::strpbrk(c, bothCases);
}

// One forward pass that never steps back in `text`: a failed partial match
// restarts the pattern at the failing character, which keeps the search O(n)
// without a table.
template <char (*fold)(char)>
int32_t findForward(const char *pattern, const char *text) {
  if (*text == '\0') return -1;
  if (*pattern == '\0') return 0;
  const char first = fold(*pattern);
  const char *cursor = pattern;
  for (const char *c = text; *c != '\0'; ++c) {
    if (cursor == pattern && (c = nextCandidate<fold>(c, first)) == nullptr) return -1;
    const char folded = fold(*c);
    if (folded == fold(*cursor)) {
      ++cursor;
    } else if (cursor != pattern) {
      cursor = pattern;
      if (folded == first) ++cursor;
    }
    if (*cursor == '\0') return static_cast<int32_t>(c - text - (cursor - pattern) + 1);
  }
  return -1;
}

// Compares over the common length only: a text that begins with the other
// compares equal.
template <char (*fold)(char)>
int32_t compareCommon(const char *a, const char *b) {
  for (; *a != '\0' && *b != '\0'; ++a, ++b) {
    const int32_t difference = signedValue(fold(*a)) - signedValue(fold(*b));
    if (difference != 0) return difference;
  }
  return 0;
}

}  // namespace

extern "C" {

FSKIT_API int32_t stridx(const char *pattern, const char *s) {
  return findForward<same>(text(pattern), text(s));
}
FSKIT_API int32_t striidx(const char *pattern, const char *s) {
  return findForward<toUpper>(text(pattern), text(s));
}
FSKIT_API int32_t strcmps(const char *a, const char *b) {
  return compareCommon<same>(text(a), text(b));
}
FSKIT_API int32_t stricmps(const char *a, const char *b) {
  return compareCommon<toUpper>(text(a), text(b));
}

}  // extern "C"
