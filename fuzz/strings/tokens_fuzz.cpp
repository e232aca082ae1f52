// SPDX-License-Identifier: MIT
// strqtoks and strtoken on any text and delimiter set. Input: strtoken's maxLen (low 4 bits) and
// strqtoks' capacity (high 4), the delimiters (default: blank and comma), a NUL and the text.
#include <fskit/strings.h>

#include "fuzz/support/fuzz_support.h"

namespace {

void checkAllTokens(const Text &s, std::string_view delims, int32_t capacity) {
  auto isDelimiter = [&](char c) { return c != '\0' && delims.find(c) != std::string_view::npos; };
  const std::string before(s.str());
  std::vector<char *> starts(size_t(capacity) + 1, nullptr);
  std::vector<int32_t> lengths(size_t(capacity) + 1, -1);
  const Text delimiters(delims);
  int32_t found = strqtoks(s.get(), delimiters.get(), capacity, starts.data(), lengths.data());
  FUZZ_CHECK(found >= 0 && found <= capacity);
  FUZZ_CHECK(s.str() == before);  // the text is only read
  FUZZ_CHECK(starts[size_t(capacity)] == nullptr);

  size_t at = 0;  // where the previous token ended
  for (int32_t k = 0; k < found; ++k) {
    FUZZ_CHECK(starts[size_t(k)] >= s.get() + at);
    size_t begin = size_t(starts[size_t(k)] - s.get());
    size_t length = size_t(lengths[size_t(k)]);
    FUZZ_CHECK(lengths[size_t(k)] > 0 && begin + length <= before.size());
    // Only delimiters between tokens, at least one after the first token.
    for (size_t i = at; i < begin; ++i) FUZZ_CHECK(isDelimiter(before[i]));
    FUZZ_CHECK(k == 0 || begin > at);
    // A token ends at a delimiter or the end; only a quoted one holds delimiters.
    const char first = before[begin];
    FUZZ_CHECK(!isDelimiter(first));
    FUZZ_CHECK(begin + length == before.size() || isDelimiter(before[begin + length]));
    if (first != '"' && first != '\'')
      for (size_t i = begin; i < begin + length; ++i) FUZZ_CHECK(!isDelimiter(before[i]));
    at = begin + length;
  }
  if (found < capacity)
    for (size_t i = at; i < before.size(); ++i) FUZZ_CHECK(isDelimiter(before[i]));
}

// Read one token at a time, the tokens hold every character that is not a
// delimiter, in order, and none longer than maxLen.
void checkEachToken(const Text &s, std::string_view delims, int32_t maxLen) {
  auto isDelimiter = [&](char c) { return c != '\0' && delims.find(c) != std::string_view::npos; };
  const Text delimiters(delims);
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

}  // namespace

FUZZ_TARGET(input) {
  uint8_t sizes = takeByte(input);
  auto [delims, text] = splitAtNul(input, " ,");
  const Text s(text);
  checkAllTokens(s, delims, sizes >> 4);
  checkEachToken(s, delims, sizes & 15);
}
