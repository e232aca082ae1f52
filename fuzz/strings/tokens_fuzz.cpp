// SPDX-License-Identifier: MIT
// strtoken on any text and delimiter set (strqtoks: against a reference split in Clean.Tokens).
// Input: strtoken's maxLen (low 4 bits), the delimiters (default: blank and comma), a NUL, the text.
#include <fskit/strings.h>

#include "fuzz/support/fuzz_support.h"

// The tokens hold every character that is not a delimiter, in order, none longer than maxLen.
FUZZ_TARGET(input) {
  const int32_t maxLen = takeByte(input) & 15;
  const auto [delims, text] = splitAtNul(input, " ,");
  auto isDelimiter = [d = delims](char c) { return c != '\0' && d.find(c) != d.npos; };
  const Text s(text), delimiters(delims);
  Text token(size_t(maxLen) + 1, '~');
  std::string kept(s.str()), joined;
  std::erase_if(kept, isDelimiter);
  int32_t pos = 0, calls = 0;
  while (const char *t = strtoken(s.get(), delimiters.get(), maxLen, token.get(), &pos)) {
    FUZZ_CHECK(t == token.get());
    FUZZ_CHECK(++calls <= int32_t(s.str().size()));
    std::string_view piece(t);
    FUZZ_CHECK(piece.size() <= size_t(maxLen));
    for (char c : piece) FUZZ_CHECK(!isDelimiter(c));
    joined += piece;
  }
  FUZZ_CHECK(token.str().empty());
  FUZZ_CHECK(pos == int32_t(s.str().size()));
  FUZZ_CHECK(maxLen == 0 || joined == kept);
}
