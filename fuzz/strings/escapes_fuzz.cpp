// SPDX-License-Identifier: MIT
// strcvtesc on any text, in place and apart, and on an escaped form that turns back into the input.
#include <fskit/strings.h>

#include "fuzz/support/fuzz_support.h"

namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isHexLetter(char c) { return (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// Letters stay bare, except odd ones that name no escape, which take a backslash.
bool staysBare(char c) {
  return isLetter(c) && (c % 2 == 0 || std::string_view("abfnrtvx").find(c) != std::string::npos);
}

// `text` (without NULs) written with escapes of every kind: the named ones, octal, hexadecimal
// and a backslash before an ordinary letter. Only letters stay bare, so an octal number never
// runs on into the next character, and a hexadecimal one is used only where no bare a-f follows.
std::string escaped(std::string_view text) {
  static constexpr std::string_view kNamed = "\a\b\f\n\r\t\v\"'\\", kNames = "abfnrtv\"'\\";
  static constexpr char kHex[] = "0123456789abcdef";
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const unsigned code = static_cast<unsigned char>(c);
    const char next = i + 1 < text.size() ? text[i + 1] : '\0';
    const bool hexFits = !staysBare(next) || !isHexLetter(next);
    if (size_t named = kNamed.find(c); named != std::string_view::npos)
      out += {'\\', kNames[named]};
    else if (isLetter(c))
      out += staysBare(c) ? std::string{c} : std::string{'\\', c};
    else if (code % 2 == 0 && hexFits)
      out += {'\\', 'x', kHex[code >> 4], kHex[code & 15]};
    else
      out += {'\\', char('0' + (code >> 6)), char('0' + (code >> 3 & 7)), char('0' + (code & 7))};
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
