// SPDX-License-Identifier: MIT
// Functions that write into a caller's buffer: exactly which bytes each writes.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <cstring>

using namespace std::string_literals;

TEST(Copy, WritesExactlyTheseBytes) {
  struct Row { char *(*call)(char *); std::string written; } rows[] = {
      // Case: only A-Z and a-z change.
      {[](char *d) { return strcpyl(d, "AbCz-1\xE4@[`{"); }, "abcz-1\xE4@[`{\0"s},
      {[](char *d) { return strcpyu(d, "AbCz-1\xE4@[`{"); }, "ABCZ-1\xE4@[`{\0"s},
      {[](char *d) { return strlower(std::strcpy(d, "AbC\xC4")); }, "abc\xC4\0"s},
      {[](char *d) { return strupper(std::strcpy(d, "aBc\xE4")); }, "ABC\xE4\0"s},
      {[](char *d) { return strncpyl(d, "AbC", 4); }, "abc\0"s},
      {[](char *d) { return strncpyl(d, "AbC", 3); }, "abc"},
      {[](char *d) { return strncpyl(d, "AbC", -5); }, ""},
      // Fields.
      {[](char *d) { return strncpyn(d, "abcdef", 4); }, "abc\0"s},
      {[](char *d) { return strncpyn(d, "ab", 5); }, "ab\0\0\0"s},
      {[](char *d) { return strncpyn(d, "ab", 0); }, ""},
      {[](char *d) { return strncpyp(d, "ab", 5, ' '); }, "ab   "},
      {[](char *d) { return strncpyp(d, "abcdefg", 5, ' '); }, "abcde"},
      {[](char *d) { return strncpyp(d, "ab", -1, ' '); }, ""},
      {[](char *d) { return strncpyb(d, "ab c  ", 6); }, "ab c\0"s},
      {[](char *d) { return strncpyb(d, "      ", 6); }, "\0"s},
      {[](char *d) { return strncpyb(d, "abcdef", 6); }, "abcdef"},
      {[](char *d) { return strncpyb(d, "ab\0cd ", 6); }, "ab\0"s},
      {[](char *d) { return strncpyb(d, "ab\x01\x1f\xE4\x80", 6); }, "ab\0"s},
      {[](char *d) { return strncpyb(d, "ab", 0); }, ""},
      // A null source was once read as n bytes instead of the one-byte empty text.
      {[](char *d) { return strncpyb(d, nullptr, 6); }, "\0"s},
      {[](char *d) { return strnpad(std::strcpy(d, "ab"), 5, '*'); }, "ab***\0"s},
      {[](char *d) { return strnpad(std::strcpy(d, "abcdef"), 5, '*'); }, "abcdef\0"s},
      {[](char *d) { return strcenter(d, "ab", 7); }, "  ab\0"s},
      {[](char *d) { return strcenter(d, "ab", 3); }, "ab\0"s},
      {[](char *d) { return strcenter(d, "ab", 0); }, "ab\0"s},
      // Substrings (strfcpy on any field and size: fuzz/strings/collapse_fuzz).
      {[](char *d) { return strleft(d, "abcdef", 3); }, "abc\0"s},
      {[](char *d) { return strleft(d, "ab", 5); }, "ab\0"s},
      {[](char *d) { return strleft(d, "abc", 0); }, "\0"s},
      {[](char *d) { return strmid(d, "abcdefg", 2, 4); }, "cde\0"s},
      {[](char *d) { return strmid(d, "abc", 1, 99); }, "bc\0"s},
      {[](char *d) { return strmid(d, "abc", 2, 1); }, "\0"s},
      {[](char *d) { return strmid(d, "abc", 4, 9); }, "\0"s},
      {[](char *d) { return strmid(d, "abc", 3, 5); }, "\0"s},
      // The last position + 1 wrapped to 0 where size_t has 32 bits.
      {[](char *d) { return strmid(d, "ab", 1, 0xFFFFFFFFu); }, "b\0"s},
      {[](char *d) { return strright(d, "abcdef", 2); }, "cdef\0"s},
      {[](char *d) { return strright(d, "abc", 4); }, "\0"s},
      {[](char *d) { return strright(d, "abc", -1); }, "abc\0"s},
      {[](char *d) { return strextract(d, "a[bc]d", "[", "]"); }, "bc\0"s},
      {[](char *d) { return strextract(d, "a[bc", "[", "]"); }, "bc\0"s},
      {[](char *d) { return strextract(d, "abc", "[", "]"); }, "\0"s},
      {[](char *d) { return strextract(d, "x(a]b)", "([", ")]"); }, "a\0"s},
      {[](char *d) { return strrepeat(d, "ab", 3); }, "ababab\0"s},
      {[](char *d) { return strrepeat(d, "ab", 0); }, ""},
      {[](char *d) { return strreverse(std::strcpy(d, "abc")); }, "cba\0"s},
      {[](char *d) { return strRemOuter(d, "f(a(b)c)", '(', ')'); }, "a(b)c\0"s},
      {[](char *d) { return strRemOuter(d, "(abc", '(', ')'); }, "abc\0"s},
      {[](char *d) { return strRemOuter(d, "abc)", '(', ')'); }, "abc\0"s},
      {[](char *d) { return strRemOuter(d, "()", '(', ')'); }, "\0"s},
      {[](char *d) { return strRemOuter(d, ")(", '(', ')'); }, ")(\0"s},
      {[](char *d) { return strRemOuter(d, "a)b(c", '(', ')'); }, "\0"s},
      {[](char *d) { return strRemOuter(d, nullptr, '(', ')'); }, "\0"s},
      // Escapes: numbers end at the first non-digit (round trips: fuzz/strings/escapes_fuzz).
      {[](char *d) { return strcvtesc(d, R"(\x41\x6a\x6Az)"); }, "Ajjz\0"s},
      {[](char *d) { return strcvtesc(d, R"(\0x\xg\1018)"); }, "\0x\0gA8\0"s},
      {[](char *d) { return strcvtesc(d, R"(\777\x141\7777777777777)"); }, "\xFF" "A\xFF\0"s},
      {[](char *d) { return strcvtesc(d, R"(\12\)"); }, "\n\0"s},
  };
  // A destination of sentinel bytes: what comes before the first one was written, NULs included.
  for (size_t i = 0; i < std::size(rows); ++i) {
    char dst[64];
    std::memset(dst, '~', sizeof dst);
    EXPECT_EQ(rows[i].call(dst), dst) << "row " << i;
    const std::string bytes(dst, sizeof dst);
    EXPECT_EQ(bytes.substr(0, bytes.find('~')), rows[i].written) << "row " << i;
  }
}

TEST(Copy, InPlace) {
  char centred[8] = "ab", outer[] = "[[x]]", escaped[] = R"(a\x41\tb\101)", field[] = "ab  ";
  EXPECT_STREQ(strcenter(centred, centred, 6), "  ab");
  EXPECT_STREQ(strRemOuter(outer, outer, '[', ']'), "[x]");
  EXPECT_STREQ(strcvtesc(escaped, escaped), "aA\tbA");
  EXPECT_STREQ(strncpyb(field, field, 4), "ab");
  EXPECT_EQ(strupper(nullptr), nullptr);
}

TEST(Copy, NothingIsReadPastTheEndOfTheSource) {
  // strtoken from a position past the end read on after the NUL and took those bytes for a token.
  const char hidden[] = "ab\0yz,c";
  char token[8] = "~";
  for (int32_t start : {2, 3, 5}) {
    int32_t pos = start;
    EXPECT_EQ(strtoken(hidden, ",", 7, token, &pos), nullptr) << start;
    EXPECT_STREQ(token, "") << start;
    EXPECT_EQ(pos, start);
  }
  auto exact = std::make_unique<char[]>(3);  // "ab" in a block of its size
  std::strcpy(exact.get(), "ab");
  int32_t pos = 3;
  EXPECT_EQ(strtoken(exact.get(), ",", 7, token, &pos), nullptr);
  pos = 1;
  EXPECT_STREQ(strtoken(exact.get(), ",", 7, token, &pos), "b");
}
