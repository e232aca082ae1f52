// SPDX-License-Identifier: MIT
// Tokens: strtoken reads one at a time, strqtoks finds all at once.
#include <cstring>

#include <fskit/strings.h>

#include "strings/scan.h"

using fskit::strings::CharSet;
using fskit::strings::text;

namespace {

// The end of a token that begins with the quote at `s`: through the closing
// quote (a doubled quote does not close) and on to the next delimiter, or the
// end of the text when the quote is never closed.
const char *quotedTokenEnd(const char *s, const CharSet &delimiters) {
  const char quote = *s++;
  for (; *s != '\0'; ++s) {
    if (*s != quote) continue;
    if (s[1] == quote) {
      ++s;
      continue;
    }
    ++s;
    break;
  }
  while (*s != '\0' && !delimiters.contains(*s)) ++s;
  return s;
}

}  // namespace

extern "C" {

FSKIT_API char *strtoken(const char *s, const char *delims, int32_t maxLen, char *token,
                         int32_t *pos) {
  if (token == nullptr || pos == nullptr) return nullptr;
  s = text(s);
  const CharSet delimiters(delims);
  *token = '\0';
  if (*pos < 0) return nullptr;
  // A position at or beyond the end is the end: nothing past the NUL is read.
  if (strnlen(s, static_cast<size_t>(*pos) + 1) <= static_cast<size_t>(*pos)) return nullptr;
  const char *at = s + *pos;
  if (delimiters.contains(*at)) {
    ++*pos;
    return token;
  }
  const char *begin = at;
  if (maxLen <= 0) {
    // No room for any character: skip the token rather than stand still.
    while (*at != '\0' && !delimiters.contains(*at)) ++at;
  } else {
    int32_t copied = 0;
    while (*at != '\0' && !delimiters.contains(*at) && copied < maxLen) token[copied++] = *at++;
    token[copied] = '\0';
  }
  // A delimiter ends the token and is consumed with it; after a token cut at
  // maxLen the rest stays for the next call.
  if (delimiters.contains(*at)) ++at;
  *pos += static_cast<int32_t>(at - begin);
  return token;
}

FSKIT_API int32_t strqtoks(const char *s, const char *delims, int32_t maxTokens,
                           char **starts, int32_t *lengths) {
  if (starts == nullptr || lengths == nullptr) return 0;
  s = text(s);
  const CharSet delimiters(delims);
  int32_t found = 0;
  while (found < maxTokens) {
    while (delimiters.contains(*s)) ++s;
    if (*s == '\0') break;
    const char *end = s;
    if (*s == '\'' || *s == '"') {
      end = quotedTokenEnd(s, delimiters);
    } else {
      while (*end != '\0' && !delimiters.contains(*end)) ++end;
    }
    starts[found] = const_cast<char *>(s);
    lengths[found] = static_cast<int32_t>(end - s);
    ++found;
    s = end;
  }
  return found;
}

}  // extern "C"
