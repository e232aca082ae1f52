// Case changes: only A-Z and a-z change, bytes from 0x80 up pass unchanged.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/strings/sentinel.h"

using fskit::test::Sentinel;
using namespace std::string_literals;

TEST(Case, CopiesAndInPlace) {
  const std::string mixed = "AbC-1 z\x80\xC4\xE4@[`{";
  Sentinel lower, upper;
  EXPECT_EQ(strcpyl(lower, mixed.c_str()), lower.bytes);
  EXPECT_EQ(lower.written(), "abc-1 z\x80\xC4\xE4@[`{\0"s);
  EXPECT_EQ(strcpyu(upper, mixed.c_str()), upper.bytes);
  EXPECT_EQ(upper.written(), "ABC-1 Z\x80\xC4\xE4@[`{\0"s);

  Sentinel s(mixed.c_str());
  EXPECT_EQ(strlower(s), s.bytes);
  EXPECT_EQ(s.written(), "abc-1 z\x80\xC4\xE4@[`{\0"s);
  EXPECT_EQ(strupper(s), s.bytes);
  EXPECT_EQ(s.written(), "ABC-1 Z\x80\xC4\xE4@[`{\0"s);
  EXPECT_EQ(strupper(nullptr), nullptr);
}

TEST(Case, StrncpylWritesAtMostN) {
  struct Row {
    const char *src;
    int32_t n;
    std::string expected;  // bytes written before the first sentinel
  } rows[] = {
      {"AbC", 10, "abc\0"s}, {"AbC", 4, "abc\0"s}, {"AbC", 3, "abc"},
      {"AbCdef", 2, "ab"},   {"AbC", 0, ""},       {"AbC", -5, ""},
      {"", 3, "\0"s},
  };
  for (const Row &row : rows) {
    Sentinel dst;
    EXPECT_EQ(strncpyl(dst, row.src, row.n), dst.bytes);
    EXPECT_EQ(dst.written(), row.expected) << row.src << " " << row.n;
  }
}
