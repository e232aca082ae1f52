// SPDX-License-Identifier: MIT
// Matching: wildcard patterns, unambiguous abbreviations and quit words.
#include <cstring>

#include <fskit/strings.h>

#include "strings/scan.h"

using fskit::strings::text;

namespace {

// The words with which a user asks a program to stop, also as read from a
// line with its line feed still attached.
constexpr const char *kQuitWords[] = {
    "abort", "abort\n", "exit", "exit\n", "fin",  "fin\n",  "halt",
    "halt\n", "kill",   "kill\n", "quit", "quit\n", "stop", "stop\n",
};

}  // namespace

extern "C" {

// Greedy match that remembers only the latest run wildcard: when the text
// stops matching, that wildcard absorbs one more character and matching
// resumes after it. Earlier run wildcards never need to be revisited.
FSKIT_API int strwildcmp(const char *pattern, const char *s, char anyChar, char anyRun) {
  if (pattern == nullptr || s == nullptr) return 0;
  auto isRun = [anyRun](char c) { return c != '\0' && c == anyRun; };
  const char *runPattern = nullptr, *runText = nullptr;
  while (*s != '\0') {
    if (isRun(*pattern)) {
      runPattern = ++pattern;
      runText = s;
      if (*pattern == '\0') return 1;  // a final run takes the rest of the text
    } else if (*pattern != '\0' && (*pattern == *s || *pattern == anyChar)) {
      ++pattern;
      ++s;
    } else if (runPattern != nullptr) {
      pattern = runPattern;
      s = ++runText;
      // A literal after the run can only match where that character occurs.
      if (*pattern != anyChar && !isRun(*pattern)) {
        s = runText = std::strchr(runText, *pattern);
        if (s == nullptr) return 0;
      }
    } else {
      return 0;
    }
  }
  while (isRun(*pattern)) ++pattern;
  return *pattern == '\0' ? 1 : 0;
}

FSKIT_API int32_t strMatchUnAmbig(const char *const *list, int32_t count, int32_t minLen,
                                  const char *word, char *out) {
  word = text(word);
  const size_t length = std::strlen(word);
  if (length == 0 || (minLen > 0 && length < static_cast<size_t>(minLen))) return -2;
  // `out` is written only once the answer is known, so it may be `word`.
  auto answer = [out](int32_t index, const char *entry) {
    if (out != nullptr) std::strcpy(out, entry);
    return index;
  };
  if (list == nullptr) count = 0;
  int32_t abbreviated = -1;
  for (int32_t i = 0; i < count; ++i) {
    const char *entry = text(list[i]);
    if (std::strcmp(entry, word) == 0) return answer(i, entry);
    if (std::strncmp(entry, word, length) == 0) {
      if (abbreviated >= 0) return answer(-2, "");
      abbreviated = i;
    }
  }
  return abbreviated >= 0 ? answer(abbreviated, text(list[abbreviated])) : answer(-1, "");
}

FSKIT_API int strQuit(const char *s) {
  // Seven characters hold the longest quit word with its line feed; the
  // eighth byte stays NUL.
  char word[8] = {};
  strncpyl(word, s, 7);
  for (const char *quit : kQuitWords)
    if (std::strncmp(word, quit, 7) == 0) return 1;
  return 0;
}

}  // extern "C"
