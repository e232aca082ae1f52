// Tokens: one at a time with strtoken, all at once with strqtoks.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Every token strtoken yields from `s`, then the position where it stopped.
std::vector<std::string> readTokens(const char *s, const char *delims, int32_t maxLen) {
  std::vector<std::string> tokens;
  char token[16];
  int32_t pos = 0;
  while (const char *t = strtoken(s, delims, maxLen, token, &pos)) tokens.push_back(t);
  EXPECT_EQ(token[0], '\0');
  tokens.push_back("@" + std::to_string(pos));
  return tokens;
}

std::vector<std::string> quotedTokens(const char *s, const char *delims, int32_t max = 8) {
  const char *starts[8];
  int32_t lengths[8];
  std::vector<std::string> tokens;
  int32_t n = strqtoks(s, delims, max, starts, lengths);
  for (int32_t i = 0; i < n; ++i) tokens.emplace_back(starts[i], lengths[i]);
  return tokens;
}

using Tokens = std::vector<std::string>;

}  // namespace

TEST(Tokens, StrtokenOneAtATime) {
  EXPECT_EQ(readTokens("a,,b", ",", 10), (Tokens{"a", "", "b", "@4"}));
  EXPECT_EQ(readTokens("a,b,", ",", 10), (Tokens{"a", "b", "@4"}));
  EXPECT_EQ(readTokens(",a", ",", 10), (Tokens{"", "a", "@2"}));
  EXPECT_EQ(readTokens("", ",", 10), (Tokens{"@0"}));
  EXPECT_EQ(readTokens("a b;c", " ;", 10), (Tokens{"a", "b", "c", "@5"}));
  // Over-long tokens are split, nothing lost; one that fills maxLen exactly
  // still takes its delimiter with it.
  EXPECT_EQ(readTokens("abcde,fg", ",", 2), (Tokens{"ab", "cd", "e", "fg", "@8"}));
  EXPECT_EQ(readTokens("ab,c", ",", 2), (Tokens{"ab", "c", "@4"}));
  EXPECT_EQ(readTokens("ab,c", ",", 0), (Tokens{"", "", "@4"}));
  EXPECT_EQ(readTokens("a\xE4,b", ",", 9), (Tokens{"a\xE4", "b", "@4"}));

  char token[4] = "xyz";
  int32_t pos = 2;
  EXPECT_EQ(strtoken("ab", ",", 3, token, &pos), nullptr);
  EXPECT_EQ(pos, 2);
  EXPECT_EQ(token[0], '\0');
  EXPECT_EQ(strtoken("ab", ",", 3, token, nullptr), nullptr);
}

TEST(Tokens, StrqtoksQuoting) {
  EXPECT_EQ(quotedTokens("ab  \"c d\" e", " \t"), (Tokens{"ab", "\"c d\"", "e"}));
  EXPECT_EQ(quotedTokens("'it''s' x", " "), (Tokens{"'it''s'", "x"}));
  EXPECT_EQ(quotedTokens("\"a b\"c d", " "), (Tokens{"\"a b\"c", "d"}));
  EXPECT_EQ(quotedTokens("'open ended", " "), (Tokens{"'open ended"}));
  EXPECT_EQ(quotedTokens("x'a b' \"'\"", " "), (Tokens{"x'a", "b'", "\"'\""}));
  EXPECT_EQ(quotedTokens(" \t \t", " \t"), Tokens{});
  EXPECT_EQ(quotedTokens("", " "), Tokens{});
  EXPECT_EQ(quotedTokens("a b c", " ", 2), (Tokens{"a", "b"}));
  EXPECT_EQ(quotedTokens("a b", " ", 0), Tokens{});
  EXPECT_EQ(quotedTokens("abc", ""), (Tokens{"abc"}));
  EXPECT_EQ(strqtoks("a", " ", 1, nullptr, nullptr), 0);
}
