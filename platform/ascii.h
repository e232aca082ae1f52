// SPDX-License-Identifier: MIT
// Character classes and case of the default C locale, whatever locale the
// calling program has set: only A-Z and a-z change case, and bytes from 0x80
// up are neither white space nor letters. Every layer, platform/ up to the
// tool, classifies characters through these, never through <cctype>.
#pragma once

namespace fskit::ascii {

constexpr unsigned char byte(char c) { return static_cast<unsigned char>(c); }

constexpr bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool isLower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool isAlpha(char c) { return isUpper(c) || isLower(c); }
constexpr bool isAlnum(char c) { return isAlpha(c) || isDigit(c); }
constexpr bool isXDigit(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
constexpr bool isPrint(char c) { return byte(c) >= 0x20 && byte(c) < 0x7f; }
constexpr bool isPunct(char c) { return isPrint(c) && c != ' ' && !isAlnum(c); }
constexpr bool isCntrl(char c) { return byte(c) < 0x20 || byte(c) == 0x7f; }

constexpr char toUpper(char c) { return isLower(c) ? char(c - 'a' + 'A') : c; }
constexpr char toLower(char c) { return isUpper(c) ? char(c - 'A' + 'a') : c; }

}  // namespace fskit::ascii
