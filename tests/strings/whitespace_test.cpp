// White space: compressing, trimming, collapsing, quoted collapsing.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/strings/sentinel.h"

using fskit::test::Sentinel;
using namespace std::string_literals;

TEST(WhiteSpace, CompressAndTrim) {
  struct Row {
    const char *in, *out;
  } rows[] = {
      {"  a \t b  ", "a b"}, {"    ", ""},    {"", ""},          {" x   y ", "x y"},
      {"a\r\n\v\fb", "a b"}, {"\xA0x\xA0", "\xA0x\xA0"},  {"abc", "abc"},
      {"a \x85 b", "a \x85 b"},
  };
  for (const auto &row : rows) {
    for (auto *fn : {strcompress, strtrim}) {
      Sentinel s(row.in);
      EXPECT_EQ(fn(s), int32_t(std::strlen(row.out))) << row.in;
      EXPECT_STREQ(s.bytes, row.out);
    }
  }
  // Only the compressed text and its NUL are written; the rest stays.
  Sentinel s("  a \t b  ");
  strcompress(s);
  EXPECT_EQ(s.first(11), "a b\0\t b  \0~"s);
  EXPECT_EQ(strcompress(nullptr), 0);
}

TEST(WhiteSpace, CollapseAndWhite) {
  char s[] = " a b\tc \n";
  EXPECT_EQ(strcollapse(s), 3);
  EXPECT_STREQ(s, "abc");
  EXPECT_EQ(strwhite(""), 1);
  EXPECT_EQ(strwhite(" \t\r\n\v\f"), 1);
  EXPECT_EQ(strwhite(" a"), 0);
  EXPECT_EQ(strwhite("\xA0"), 0);
}

TEST(WhiteSpace, QuotedCollapse) {
  struct Row {
    const char *in, *out;
  } rows[] = {
      {R"(a = "b  c" d)", R"(a="b  c"d)"},
      {R"(x "say ""hi"" now")", R"(x"say "hi" now")"},
      {R"("ab")", R"("ab")"},
      {R"(a "open  end)", R"(a"open  end)"},
      {R"("say ""hi""" x)", R"("say "hi""x)"},  // pair, then the close
      {R"(""  "")", R"("""")"},
  };
  for (const auto &row : rows) {
    std::string s = row.in;
    EXPECT_EQ(strqcollapse(s.data()), int32_t(std::strlen(row.out))) << row.in;
    EXPECT_STREQ(s.c_str(), row.out);
  }
}
