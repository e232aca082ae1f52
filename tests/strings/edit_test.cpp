// Removing, replacing, outer brackets and escapes.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/strings/sentinel.h"

using fskit::test::Sentinel;
using namespace std::string_literals;

TEST(Edit, RemoveAndReplace) {
  char s[] = "a-b_c-";
  EXPECT_EQ(strremove(s, "-_"), 3);
  EXPECT_STREQ(s, "abc");
  EXPECT_EQ(strremove(s, ""), 3);
  EXPECT_STREQ(s, "abc");

  struct Row {
    const char *src, *find, *repl, *out;
  } rows[] = {
      {"abcabab", "ab", "x", "xcxx"}, {"aaa", "aa", "b", "ba"},   {"abc", "", "x", "abc"},
      {"abc", nullptr, "x", "abc"},   {"abcb", "b", nullptr, "ac"}, {"", "a", "x", ""},
      {"abc", "abc", "", ""},         {"a.b", ".", "::", "a::b"}, {"xyz", "q", "r", "xyz"},
      {"aa", "a", "aa", "aaaa"},  // replaced text is not searched again
  };
  for (const auto &row : rows) {
    Sentinel dst;
    EXPECT_EQ(strreplace(dst, row.src, row.find, row.repl), int32_t(std::strlen(row.out)));
    EXPECT_EQ(dst.written(), row.out + "\0"s) << row.src;
  }
}

TEST(Edit, RemoveOuter) {
  struct Row {
    const char *src, *out;
  } rows[] = {
      {"(abc)", "abc"}, {"f(a(b)c)", "a(b)c"}, {"(abc", "abc"}, {"abc)", "abc"},
      {"abc", "abc"},   {"()", ""},            {")(", ")("},    {"a)b(c", ""},
      {"", ""},         {nullptr, ""},         {"x(", "x("},    {")x", ")x"},
  };
  for (const auto &row : rows) {
    Sentinel dst;
    EXPECT_EQ(strRemOuter(dst, row.src, '(', ')'), dst.bytes);
    EXPECT_EQ(dst.written(), row.out + "\0"s) << (row.src ? row.src : "null");
  }
  char inPlace[] = "[[x]]";
  EXPECT_STREQ(strRemOuter(inPlace, inPlace, '[', ']'), "[x]");
}

TEST(Edit, Escapes) {
  struct Row {
    std::string in, out;
  } rows[] = {
      {R"(\ta\101)", "\ta" "A"},
      {R"(\x41)", "A"},
      {R"(\x6a)", "j"},
      {R"(\x6Az)", "jz"},
      {R"(\q)", "q"},
      {R"(\"\'\\)", "\"'\\"},
      {R"(\a\b\f\n\r\v)", "\a\b\f\n\r\v"},
      {R"(\0x)", "\0x"s},
      {R"(\xg)", "\0g"s},                   // no digit: a 0 byte, then g afresh
      {R"(\101\102)", "AB"},                // a number ends at the next escape
      {R"(\1018)", "A8"},                   // 8 is not octal
      {R"(\777)", "\xFF"},                  // low 8 bits of 511
      {R"(\x141)", "A"},                    // low 8 bits of 0x141
      {R"(\7777777777777777777777)", "\xFF"},  // no digit limit
      {R"(ab\)", "ab"},                     // a lone final backslash is dropped
      {R"(\12)", "\n"},                     // pending number at the end
      {"\xE4\\\xE4", "\xE4\xE4"},
  };
  for (const auto &row : rows) {
    Sentinel dst;
    EXPECT_EQ(strcvtesc(dst, row.in.c_str()), dst.bytes);
    EXPECT_EQ(dst.written(), row.out + "\0"s) << row.in;
    // In place gives the same result.
    std::string same = row.in;
    strcvtesc(same.data(), same.data());
    EXPECT_EQ(std::string(same.c_str(), row.out.size()), row.out) << row.in;
  }
}
