// Substrings, repetition and reversal.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/strings/sentinel.h"

using fskit::test::Sentinel;
using namespace std::string_literals;

TEST(Substrings, LeftMidRight) {
  struct Row {
    std::function<char *(char *)> call;
    std::string written;
  } rows[] = {
      {[](char *d) { return strleft(d, "abcdef", 3); }, "abc\0"s},
      {[](char *d) { return strleft(d, "ab", 5); }, "ab\0"s},
      {[](char *d) { return strleft(d, "", 2); }, "\0"s},
      {[](char *d) { return strleft(d, "abc", 0); }, "\0"s},
      {[](char *d) { return strmid(d, "abcdefg", 2, 4); }, "cde\0"s},
      {[](char *d) { return strmid(d, "abc", 1, 99); }, "bc\0"s},
      {[](char *d) { return strmid(d, "abc", 2, 1); }, "\0"s},
      {[](char *d) { return strmid(d, "abc", 4, 9); }, "\0"s},
      {[](char *d) { return strmid(d, "abc", 3, 5); }, "\0"s},
      {[](char *d) { return strmid(d, "abc", 0, 0); }, "a\0"s},
      {[](char *d) { return strright(d, "abcdef", 2); }, "cdef\0"s},
      {[](char *d) { return strright(d, "abc", 3); }, "\0"s},
      {[](char *d) { return strright(d, "abc", 4); }, "\0"s},
      {[](char *d) { return strright(d, "abc", -1); }, "abc\0"s},
  };
  for (size_t i = 0; i < std::size(rows); ++i) {
    Sentinel dst;
    EXPECT_EQ(rows[i].call(dst), dst.bytes);
    EXPECT_EQ(dst.written(), rows[i].written) << "row " << i;
  }
  // A huge `to` reads no further than the text's NUL.
  char three[3] = {'a', 'b', '\0'};
  Sentinel dst;
  EXPECT_EQ(strmid(dst, three, 1, 0xFFFFFFFFu), dst.bytes);
  EXPECT_STREQ(dst.bytes, "b");
}

TEST(Substrings, Extract) {
  struct Row {
    const char *src, *open, *close, *out;
  } rows[] = {
      {"a[bc]d", "[", "]", "bc"}, {"a[bc", "[", "]", "bc"}, {"abc", "[", "]", ""},
      {"x(a]b)", "([", ")]", "a"}, {"[]", "[", "]", ""},    {"a]b[c]", "[", "]", "c"},
      {"a[b", "", "]", ""},
  };
  for (const auto &row : rows) {
    Sentinel dst;
    EXPECT_EQ(strextract(dst, row.src, row.open, row.close), dst.bytes);
    EXPECT_EQ(dst.written(), row.out + "\0"s) << row.src;
  }
}

TEST(Substrings, RepeatAndReverse) {
  Sentinel dst;
  EXPECT_EQ(strrepeat(dst, "ab", 3), dst.bytes);
  EXPECT_EQ(dst.written(), "ababab\0"s);
  Sentinel kept("old");
  strrepeat(kept, "ab", 0);
  strrepeat(kept, "ab", -4);
  EXPECT_EQ(kept.written(), "old\0"s);
  Sentinel empty;
  strrepeat(empty, "", 5);
  EXPECT_EQ(empty.written(), "\0"s);

  for (auto [in, out] : {std::pair{"abc", "cba"}, {"ab", "ba"}, {"a", "a"}, {"", ""},
                         std::pair{"a\xE4z", "z\xE4" "a"}}) {
    Sentinel s(in);
    EXPECT_EQ(strreverse(s), s.bytes);
    EXPECT_EQ(s.written(), out + "\0"s);
  }
}
