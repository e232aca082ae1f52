// SPDX-License-Identifier: MIT
// strcvtesc on any text, in place and into a separate buffer, and on an
// escaped form of the input that must turn back into the input.
#include <fskit/strings.h>

#include "fuzz/support/fuzz_support.h"

namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isHexLetter(char c) { return (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// `bytes` (NULs left out) written with escapes of every kind: the named
// ones, octal, hexadecimal and a backslash before an ordinary letter. Only
// letters stay bare, so an octal number can never run on into the next
// character, and a hexadecimal one is used only where no bare a-f follows.
std::string escaped(std::string_view bytes) {
  static constexpr std::string_view kNamed = "\a\b\f\n\r\t\v\"'\\", kNames = "abfnrtv\"'\\";
  std::vector<std::string> pieces;
  for (char c : bytes) {
    const unsigned char code = static_cast<unsigned char>(c);
    if (code == 0) continue;
    if (size_t named = kNamed.find(c); named != std::string_view::npos)
      pieces.push_back({'\\', kNames[named]});
    else if (isLetter(c) && code % 2 == 1 && std::string_view("abfnrtvx").find(c) == std::string_view::npos)
      pieces.push_back({'\\', c});
    else if (isLetter(c))
      pieces.push_back({c});
    else
      pieces.push_back({'\\', char('0' + (code >> 6)), char('0' + (code >> 3 & 7)), char('0' + (code & 7))});
  }
  static const char kHex[] = "0123456789abcdef";
  std::string out;
  for (size_t i = 0; i < pieces.size(); ++i) {
    const std::string &piece = pieces[i];
    const bool octal = piece.size() == 4;
    const char value = char((piece[1] - '0') << 6 | (piece[2] - '0') << 3 | (piece[3] - '0'));
    const bool hexFits = i + 1 == pieces.size() || !isHexLetter(pieces[i + 1][0]);
    if (octal && value % 2 == 0 && hexFits)
      out += std::string("\\x") + kHex[(unsigned char)value >> 4] + kHex[value & 15];
    else
      out += piece;
  }
  return out;
}

}  // namespace

FUZZ_TARGET(input) {
  const Text src(input);
  Text apart(src.str().size() + 1, '~');
  FUZZ_CHECK(strcvtesc(apart.get(), src.get()) == apart.get());
  Text inPlace(src.str());
  FUZZ_CHECK(strcvtesc(inPlace.get(), inPlace.get()) == inPlace.get());
  FUZZ_CHECK(apart.str() == inPlace.str());
  if (src.str().find('\\') == std::string_view::npos) FUZZ_CHECK(apart.str() == src.str());

  std::string original(input);
  std::erase(original, '\0');
  const Text encoded(escaped(original));
  Text decoded(encoded.size(), '~');
  strcvtesc(decoded.get(), encoded.get());
  FUZZ_CHECK(decoded.str() == original);
}
