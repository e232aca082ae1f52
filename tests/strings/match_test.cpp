// Wildcard matching, abbreviations, quit words and the hash.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/strings/random_text.h"
#include "tests/strings/sentinel.h"

using fskit::test::Sentinel;

namespace {

// Full wildcard semantics, by plain recursion.
bool globMatches(const char *p, const char *t) {
  if (*p == '*') return globMatches(p + 1, t) || (*t != '\0' && globMatches(p, t + 1));
  if (*t == '\0') return *p == '\0';
  return *p != '\0' && (*p == '?' || *p == *t) && globMatches(p + 1, t + 1);
}

// The minimal single-pass scan with one restart point and no retry of the
// failing character; whatever it accepts, strwildcmp must accept.
bool scanAccepts(const std::string &pattern, const std::string &text) {
  size_t p = 0, t = 0;
  std::optional<size_t> restart;
  while (t < text.size()) {
    const char c = p < pattern.size() ? pattern[p] : '\0';
    if (c == '*') {
      if (p + 1 == pattern.size()) return true;
      restart = ++p;
    } else if (c != '\0' && (c == text[t] || c == '?')) {
      ++p, ++t;
      if (t == text.size()) return p == pattern.size();
      if (p == pattern.size()) {
        if (!restart) return false;
        p = *restart;
      }
    } else {
      if (!restart) return false;
      p = *restart, ++t;
    }
  }
  return p == pattern.size();
}

}  // namespace

TEST(Match, Wildcards) {
  struct Row {
    const char *pattern, *text;
    int matches;
  } rows[] = {
      {"a?c", "abc", 1},       {"a*", "abc", 1},      {"*.dat", "run.dat", 1},
      {"*.dat", "x.y.dat", 1}, {"a*c", "ac", 1},      {"a*c", "abbc", 1},
      {"", "", 1},             {"abc", "abc", 1},     {"abc", "abcabc", 0},
      {"a?c", "ac", 0},        {"ABC", "abc", 0},     {"*", "", 1},
      {"ab*", "ab", 1},        {"*ab", "aab", 1},     {"a**b", "axb", 1},
      {"?", "", 0},            {"", "x", 0},          {"a*b*c", "aXbYbZc", 1},
      {"a*b", "abx", 0},       {"\xE4?", "\xE4\x80", 1},
  };
  for (const auto &row : rows)
    EXPECT_EQ(strwildcmp(row.pattern, row.text, '?', '*'), row.matches)
        << row.pattern << " ~ " << row.text;
  EXPECT_EQ(strwildcmp(nullptr, "x", '?', '*'), 0);
  EXPECT_EQ(strwildcmp("x", nullptr, '?', '*'), 0);
  EXPECT_EQ(strwildcmp("a%_", "abcd", '_', '%'), 1);
  // A NUL wildcard stands for nothing and never reads past the pattern.
  EXPECT_EQ(strwildcmp("ab", "abc", '\0', '\0'), 0);
  EXPECT_EQ(strwildcmp("", "x", '\0', '\0'), 0);
}

TEST(Match, WildcardsAgainstReferences) {
  fskit::test::RandomText random(20240601);
  int scanAccepted = 0;
  for (int i = 0; i < 20000; ++i) {
    const std::string pattern = random("ab?*", 6), text = random("ab", 8);
    const int got = strwildcmp(pattern.c_str(), text.c_str(), '?', '*');
    ASSERT_EQ(got, globMatches(pattern.c_str(), text.c_str()) ? 1 : 0)
        << pattern << " ~ " << text;
    if (scanAccepts(pattern, text)) {
      ++scanAccepted;
      ASSERT_EQ(got, 1) << pattern << " ~ " << text;
    }
  }
  EXPECT_GT(scanAccepted, 1000);
}

TEST(Match, Abbreviations) {
  const char *commands[] = {"list", "load", "log"};
  struct Row {
    const char *word;
    int32_t minLen, index;
    const char *out;  // null: untouched
  } rows[] = {
      {"li", 0, 0, "list"}, {"lo", 0, -2, ""}, {"log", 0, 2, "log"}, {"x", 0, -1, ""},
      {"li", 3, -2, nullptr}, {"", 0, -2, nullptr}, {"log", 4, -2, nullptr},
      {"LIST", 0, -1, ""},  {"lists", 0, -1, ""}, {"lis", 3, 0, "list"},
  };
  for (const auto &row : rows) {
    Sentinel out;
    EXPECT_EQ(strMatchUnAmbig(commands, 3, row.minLen, row.word, out), row.index) << row.word;
    EXPECT_EQ(out.written(), row.out ? std::string(row.out, std::strlen(row.out) + 1) : "")
        << row.word;
  }
  // The scan stops at the second abbreviation, before a later exact entry.
  const char *late[] = {"print", "printer", "prin"}, *early[] = {"prin", "print", "printer"};
  char out[16];
  EXPECT_EQ(strMatchUnAmbig(late, 3, 0, "prin", out), -2);
  EXPECT_EQ(strMatchUnAmbig(early, 3, 0, "prin", out), 0);
  EXPECT_STREQ(out, "prin");
  EXPECT_EQ(strMatchUnAmbig(early, 0, 0, "prin", out), -1);
  EXPECT_STREQ(out, "");
  // `out` may be the word itself.
  char word[16] = "printe";
  EXPECT_EQ(strMatchUnAmbig(early, 3, 0, word, word), 2);
  EXPECT_STREQ(word, "printer");
}

TEST(Match, QuitWordsAndHash) {
  for (const char *quit : {"quit", "QUIT", "Stop\n", "fin", "abort\n", "eXiT", "halt", "kill\n"})
    EXPECT_EQ(strQuit(quit), 1) << quit;
  for (const char *other : {"quitting", " quit", "quit\r\n", "", "qui", "abort\n\n", "fi"})
    EXPECT_EQ(strQuit(other), 0) << other;

  EXPECT_EQ(stringHash("abc", 1000), 887u);
  EXPECT_EQ(stringHash("a", 1000), 853u);
  EXPECT_EQ(stringHash("ab", 1000), 413u);
  EXPECT_EQ(stringHash("", 1000), 1u);
  EXPECT_EQ(stringHash("", 1), 1u);
  EXPECT_EQ(stringHash("", 0), 1u);
  // Bytes are signed: 0xFF is -1, so "\xFF" gives 1 + 107 + 10009; for two
  // 0x80 bytes each step adds 16384 * 10117, giving 1 and then 2 modulo 7.
  EXPECT_EQ(stringHash("\xFF", 100000), 10117u);
  EXPECT_EQ(stringHash("\x80\x80", 7), 2u);
  for (const char *s : {"x", "hello world", "\x80\xFF\x7F"}) EXPECT_LT(stringHash(s, 13), 13u);
}
