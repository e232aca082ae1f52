// SPDX-License-Identifier: MIT
// The white-space editors on any text, and strfcpy on a field that has no NUL of its own.
// Input: strfcpy's destination size (one byte), then the text (up to a NUL) and, whole, the field.
#include <fskit/strings.h>

#include <sstream>

#include "fuzz/support/fuzz_support.h"

namespace {

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The words of `s` (split at the C locale's white space, as isSpace) joined by one blank.
std::string words(std::string_view s) {
  std::istringstream in{std::string(s)};
  std::string out, word;
  while (in >> word) out += (out.empty() ? "" : " ") + word;
  return out;
}

std::string without(std::string_view s, bool (*drop)(char)) {
  std::string out(s);
  std::erase_if(out, drop);
  return out;
}

bool isSubsequence(std::string_view part, std::string_view whole) {
  size_t at = 0;
  for (char c : whole)
    if (at < part.size() && part[at] == c) ++at;
  return at == part.size();
}

template <typename Edit>
std::string edited(std::string_view s, Edit edit, int32_t *length) {
  Text copy(s);
  *length = edit(copy.get());
  return std::string(copy.str());
}

}  // namespace

FUZZ_TARGET(input) {
  const uint32_t dstSize = takeByte(input);
  const std::string_view s = input.substr(0, input.find('\0'));
  int32_t length = -1;

  const std::string compressed = edited(s, strcompress, &length);
  FUZZ_CHECK(compressed == words(s) && length == int32_t(compressed.size()));
  FUZZ_CHECK(edited(s, strtrim, &length) == compressed && length == int32_t(compressed.size()));

  const std::string collapsed = edited(s, strcollapse, &length);
  FUZZ_CHECK(collapsed == without(s, isSpace) && length == int32_t(collapsed.size()));

  // strqcollapse removes only white space and quotes; without quotes it is strcollapse.
  const std::string qcollapsed = edited(s, strqcollapse, &length);
  FUZZ_CHECK(length == int32_t(qcollapsed.size()));
  FUZZ_CHECK(isSubsequence(qcollapsed, s));
  auto spaceOrQuote = [](char c) { return isSpace(c) || c == '"'; };
  FUZZ_CHECK(without(qcollapsed, spaceOrQuote) == without(s, spaceOrQuote));
  if (s.find('"') == std::string_view::npos) FUZZ_CHECK(qcollapsed == collapsed);

  // strfcpy: the field (the whole input) on the heap without a NUL after it, so that a read past
  // srcLen bytes is caught.
  std::unique_ptr<char[]> src(new char[input.size()]);
  if (!input.empty()) std::memcpy(src.get(), input.data(), input.size());
  Text dst(dstSize, '~');
  const uint32_t srcLen = uint32_t(input.size());
  FUZZ_CHECK(strfcpy(dst.get(), dstSize, src.get(), srcLen) == dst.get());
  if (dstSize == 0) return;
  const size_t count = std::min<size_t>(dstSize - 1, srcLen);
  std::string expected = compressed.substr(0, count);
  expected.resize(count + 1, '\0');
  FUZZ_CHECK(std::string_view(dst.get(), count + 1) == expected);
  for (size_t i = count + 1; i < dstSize; ++i) FUZZ_CHECK(dst.get()[i] == '~');
}
