// SPDX-License-Identifier: MIT
// Searching, comparing, wildcard and abbreviation matching, quit words, hash.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <cstring>

#include "tests/strings/random_text.h"

TEST(Search, FindCompareAndWildcards) {
  struct Find { const char *pattern, *text; int32_t exact, folded; } finds[] = {  // folded: striidx
      // A partial match is not retried from within itself.
      {"aab", "aaab", -1, -1}, {"aab", "aaabaab", 4, 4}, {"", "abc", 0, 0},
      {"\xE4", "a\xC4\xE4", 2, 2},
  };
  for (const auto &f : finds) {
    EXPECT_EQ(stridx(f.pattern, f.text), f.exact) << f.pattern << " in " << f.text;
    EXPECT_EQ(striidx(f.pattern, f.text), f.folded) << f.pattern << " in " << f.text;
  }
  struct Compare { const char *a, *b; int32_t exact, folded; } compares[] = {  // folded: stricmps
      {"abc", "abd", 'c' - 'd', 'C' - 'D'}, {"ABC", "abc", 'A' - 'a', 0},
      {"abc", "ab", 0, 0},                  {"", "x", 0, 0},
      {"a[", "A{", 'a' - 'A', '[' - '{'},   {"a", "\x80", 'a' + 128, 'A' + 128},
      {"\xFF", "a", -1 - 'a', -1 - 'A'},
  };
  for (const auto &c : compares) {
    EXPECT_EQ(strcmps(c.a, c.b), c.exact) << c.a << " / " << c.b;
    EXPECT_EQ(stricmps(c.a, c.b), c.folded) << c.a << " / " << c.b;
  }
  // strwildcmp against a plain matcher, for any wildcard bytes: fuzz/strings/wildcmp_fuzz.
  EXPECT_EQ(strwildcmp(nullptr, "x", '?', '*'), 0);
  EXPECT_EQ(strwildcmp("*ab", "aab", '?', '*'), 1);  // retried after a partial match
}

TEST(Search, StridxProperties) {
  fskit::test::RandomText random{std::mt19937(7)};
  for (int i = 0; i < 20000; ++i) {
    const std::string pattern = random("ab", 4) + "a", text = random("abAB", 12);
    const int32_t found = stridx(pattern.c_str(), text.c_str());
    const size_t first = text.find(pattern);
    // Whatever is found is an occurrence; the first one if the first character does not recur.
    ASSERT_TRUE(found < 0 || text.compare(size_t(found), pattern.size(), pattern) == 0) << found;
    if (first == std::string::npos || pattern.find(pattern[0], 1) == std::string::npos) {
      ASSERT_EQ(found, int32_t(first)) << pattern << " in " << text;
    }
    // Ignoring case is the same pass over upper-cased texts.
    std::string upperPattern = pattern, upperText = text;
    ASSERT_EQ(striidx(pattern.c_str(), text.c_str()),
              stridx(strupper(upperPattern.data()), strupper(upperText.data())));
  }
}

TEST(Search, Abbreviations) {
  const char *commands[] = {"list", "load", "log"};
  // A null `out`: left untouched.
  struct Row { const char *word; int32_t minLen, index; const char *out; } rows[] = {
      {"li", 0, 0, "list"},   {"lo", 0, -2, ""},      {"log", 0, 2, "log"}, {"x", 0, -1, ""},
      {"li", 3, -2, nullptr}, {"", 0, -2, nullptr},   {"LIST", 0, -1, ""},  {"lis", 3, 0, "list"},
  };
  for (const auto &row : rows) {
    char out[8] = "~";
    EXPECT_EQ(strMatchUnAmbig(commands, 3, row.minLen, row.word, out), row.index) << row.word;
    EXPECT_STREQ(out, row.out ? row.out : "~") << row.word;
  }
  // The scan stops at the second abbreviation, before a later exact entry.
  const char *late[] = {"print", "printer", "prin"}, *early[] = {"prin", "print", "printer"};
  char out[16] = "printe";
  EXPECT_EQ(strMatchUnAmbig(late, 3, 0, "prin", out), -2);
  EXPECT_EQ(strMatchUnAmbig(early, 3, 0, "prin", out), 0);
  EXPECT_EQ(strMatchUnAmbig(early, 0, 0, "prin", out), -1);
  std::strcpy(out, "printe");
  EXPECT_EQ(strMatchUnAmbig(early, 3, 0, out, out), 2);  // `out` may be the word
  EXPECT_STREQ(out, "printer");
}

TEST(Search, QuitWordsAndHash) {
  for (const char *quit : {"quit", "QUIT", "Stop\n", "fin", "abort\n", "eXiT", "halt", "kill\n"})
    EXPECT_EQ(strQuit(quit), 1) << quit;
  for (const char *other : {"quitting", " quit", "quit\r\n", "", "abort\n\n", "fi"})
    EXPECT_EQ(strQuit(other), 0) << other;

  // Bytes are signed: "\xFF" gives 1 + 107 + 10009; each 0x80 adds 16384 * 10117 (1, 2 mod 7).
  struct Hash { const char *text; uint32_t size, hash; };
  for (Hash h : {Hash{"abc", 1000, 887}, {"a", 1000, 853}, {"ab", 1000, 413}, {"", 1000, 1},
                 {"", 0, 1}, {"\xFF", 100000, 10117}, {"\x80\x80", 7, 2}})
    EXPECT_EQ(stringHash(h.text, h.size), h.hash) << h.text;
}
