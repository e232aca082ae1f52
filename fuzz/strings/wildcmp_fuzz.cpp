// SPDX-License-Identifier: MIT
// strwildcmp against a plain table-filling matcher. Input: the any-character byte, the any-run
// byte, then the pattern, a NUL and the text (without a NUL the text is empty).
#include <fskit/strings.h>

#include "fuzz/support/fuzz_support.h"

namespace {

// table[i][j]: the pattern's first i characters match the text's first j; a NUL wildcard is none.
bool matches(std::string_view pattern, std::string_view text, char anyChar, char anyRun) {
  std::vector<std::vector<bool>> table(pattern.size() + 1, std::vector<bool>(text.size() + 1));
  table[0][0] = true;
  for (size_t i = 1; i <= pattern.size(); ++i) {
    const char p = pattern[i - 1];
    for (size_t j = 0; j <= text.size(); ++j) {
      if (p == anyRun && anyRun != '\0')
        table[i][j] = table[i - 1][j] || (j > 0 && table[i][j - 1]);
      else
        table[i][j] = j > 0 && table[i - 1][j - 1] && (p == text[j - 1] || (p == anyChar && anyChar != '\0'));
    }
  }
  return table[pattern.size()][text.size()];
}

}  // namespace

FUZZ_TARGET(input) {
  const char anyChar = char(takeByte(input)), anyRun = char(takeByte(input));
  if (input.size() > 1024) return;  // the plain matcher is quadratic
  const size_t nul = input.find('\0');
  const Text pattern(input.substr(0, nul));
  const Text text(nul == std::string_view::npos ? std::string_view() : input.substr(nul + 1));
  const int result = strwildcmp(pattern.get(), text.get(), anyChar, anyRun);
  FUZZ_CHECK(result == (matches(pattern.str(), text.str(), anyChar, anyRun) ? 1 : 0));
}
