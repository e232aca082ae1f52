// SPDX-License-Identifier: MIT
// White space, removing, replacing and tokens.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/strings/random_text.h"

using Tokens = std::vector<std::string>;
using namespace std::string_literals;

TEST(Clean, InPlaceEdits) {
  struct Row { int32_t (*edit)(char *); const char *in, *out; } rows[] = {
      // strcompress, strtrim and strcollapse on any text: fuzz/strings/collapse_fuzz.
      {strqcollapse, R"(a = "b  c" d)", R"(a="b  c"d)"},
      {strqcollapse, R"(x "say ""hi"" now")", R"(x"say "hi" now")"},
      {strqcollapse, R"("ab")", R"("ab")"},
      {strqcollapse, R"(a "open  end)", R"(a"open  end)"},
      {strqcollapse, R"("say ""hi""" x)", R"("say "hi""x)"},  // a pair, then the close
      {[](char *s) { return strremove(s, "-_"); }, "a-b_c-", "abc"},
      {[](char *s) { return strremove(s, ""); }, "a-b", "a-b"},
  };
  for (const auto &row : rows) {
    std::string s = row.in;
    EXPECT_EQ(row.edit(s.data()), int32_t(std::strlen(row.out))) << row.in;
    EXPECT_STREQ(s.c_str(), row.out);
  }
  // Only the compressed text and its NUL are written; the rest stays.
  char s[] = "  a \t b  ";
  strcompress(s);
  EXPECT_EQ(std::string(s, sizeof s), "a b\0\t b  \0"s);
  EXPECT_EQ(strcompress(nullptr), 0);
  for (auto [text, white] : {std::pair{"", 1}, {" \t\r\n\v\f", 1}, {" a", 0}, {"\xA0", 0}})
    EXPECT_EQ(strwhite(text), white) << text;
}

TEST(Clean, Replace) {
  struct Row { const char *src, *find, *repl, *out; } rows[] = {
      {"abcabab", "ab", "x", "xcxx"}, {"aaa", "aa", "b", "ba"},     {"abc", "", "x", "abc"},
      {"abc", nullptr, "x", "abc"},   {"abcb", "b", nullptr, "ac"}, {"", "a", "x", ""},
      {"aa", "a", "aa", "aaaa"},  // replaced text is not searched again
  };
  for (const auto &row : rows) {
    char dst[16];
    std::memset(dst, '~', sizeof dst);
    EXPECT_EQ(strreplace(dst, row.src, row.find, row.repl), int32_t(std::strlen(row.out)));
    EXPECT_EQ(std::string(dst, std::strlen(row.out) + 2), row.out + "\0~"s) << row.src;
  }
}

namespace {

// Every token strtoken yields, then "@" and the position where it stopped.
Tokens readTokens(const char *s, int32_t maxLen) {
  Tokens tokens;
  char token[16];
  int32_t pos = 0;
  while (const char *t = strtoken(s, ",;", maxLen, token, &pos)) tokens.push_back(t);
  tokens.push_back("@" + std::to_string(pos));
  return tokens;
}

// strqtoks' tokens; it writes no start past `max`.
Tokens quotedTokens(const std::string &s, int32_t max = 16) {
  char *starts[17] = {};
  int32_t lengths[16];
  Tokens tokens;
  for (int32_t i = 0, n = strqtoks(s.c_str(), " ,", max, starts, lengths); i < n; ++i)
    tokens.emplace_back(starts[i], lengths[i]);
  EXPECT_EQ(starts[max], nullptr);
  return tokens;
}

// The same split by searching for quote and delimiter positions.
Tokens referenceTokens(const std::string &s) {
  Tokens tokens;
  auto delimiterFrom = [&](size_t i) { return std::min(s.find_first_of(" ,", i), s.size()); };
  for (size_t begin = s.find_first_not_of(" ,"), end; begin != std::string::npos;
       begin = s.find_first_not_of(" ,", end)) {
    end = delimiterFrom(begin);
    if (s[begin] == '\'' || s[begin] == '"') {
      size_t close = s.find(s[begin], begin + 1);
      while (close != std::string::npos && close + 1 < s.size() && s[close + 1] == s[begin])
        close = s.find(s[begin], close + 2);
      end = close == std::string::npos ? s.size() : delimiterFrom(close + 1);
    }
    tokens.push_back(s.substr(begin, end - begin));
  }
  return tokens;
}

}  // namespace

TEST(Clean, Tokens) {
  EXPECT_EQ(readTokens("a,,b", 9), (Tokens{"a", "", "b", "@4"}));
  EXPECT_EQ(readTokens(";a;b,", 9), (Tokens{"", "a", "b", "@5"}));
  // Over-long tokens are split; one that fills maxLen exactly still takes its delimiter.
  EXPECT_EQ(readTokens("abcde,fg", 2), (Tokens{"ab", "cd", "e", "fg", "@8"}));
  EXPECT_EQ(readTokens("ab,c", 2), (Tokens{"ab", "c", "@4"}));
  EXPECT_EQ(readTokens("ab,c", 0), (Tokens{"", "", "@4"}));

  // strqtoks against the reference split, with every cap from 0 to 3.
  fskit::test::RandomText random{std::mt19937(99)};
  for (int i = 0; i < 20000; ++i) {
    const std::string s = random("ab ,'\"", 14);
    const Tokens expected = referenceTokens(s);
    ASSERT_EQ(quotedTokens(s), expected) << s;
    const int32_t max = i % 4;
    const Tokens capped(expected.begin(), expected.begin() + std::min<size_t>(max, expected.size()));
    ASSERT_EQ(quotedTokens(s, max), capped) << s;
  }
}
