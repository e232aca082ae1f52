// Searching and comparing over the common length.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/strings/random_text.h"

TEST(Search, StridxForwardPass) {
  struct Row {
    const char *pattern, *text;
    int32_t exact, folded;  // stridx, striidx
  } rows[] = {
      {"bc", "abcd", 1, 1},    {"ab", "aab", 1, 1},   {"x", "abc", -1, -1},
      {"ab", "", -1, -1},      {"BC", "abcd", -1, 1}, {"abc", "ABC", -1, 0},
      {"aab", "aaab", -1, -1},  // begins inside a partial match: not seen
      {"aab", "aaabaab", 4, 4}, {"cd", "abcd", 2, 2}, {"abcd", "abc", -1, -1},
      {"", "abc", 0, 0},        {"", "", -1, -1},     {"\xE4", "a\xC4\xE4", 2, 2},
      {"\xC4", "a\xE4", -1, -1},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(stridx(row.pattern, row.text), row.exact) << row.pattern << " in " << row.text;
    EXPECT_EQ(striidx(row.pattern, row.text), row.folded) << row.pattern << " in " << row.text;
  }
}

TEST(Search, CompareOverCommonLength) {
  struct Row {
    const char *a, *b;
    int32_t exact, folded;  // strcmps, stricmps
  } rows[] = {
      {"abc", "abd", 'c' - 'd', 'C' - 'D'},
      {"ABC", "abc", 'A' - 'a', 0},
      {"abc", "ab", 0, 0},
      {"ab", "", 0, 0},
      {"", "x", 0, 0},
      {"jan", "JANUARY", 'j' - 'J', 0},
      {"a[", "A{", 'a' - 'A', '[' - '{'},  // only letters fold
      {"a", "\x80", 'a' + 128, 'A' + 128},  // bytes taken as signed values
      {"\xFF", "a", -1 - 'a', -1 - 'A'},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(strcmps(row.a, row.b), row.exact) << row.a << " / " << row.b;
    EXPECT_EQ(stricmps(row.a, row.b), row.folded) << row.a << " / " << row.b;
  }
  EXPECT_EQ(stricmps(nullptr, "x"), 0);
}

TEST(Search, StridxProperties) {
  fskit::test::RandomText random(7);
  for (int i = 0; i < 20000; ++i) {
    const std::string pattern = random("ab", 4), text = random("abAB", 12);
    if (pattern.empty()) continue;
    const int32_t found = stridx(pattern.c_str(), text.c_str());
    const size_t first = text.find(pattern);
    if (first == std::string::npos) {
      ASSERT_EQ(found, -1) << pattern << " in " << text;
      continue;
    }
    // What is found is a real occurrence; and when the first character does
    // not recur in the pattern, no occurrence can begin inside a partial
    // match, so the pass finds the first.
    if (found >= 0) {
      ASSERT_EQ(text.compare(size_t(found), pattern.size(), pattern), 0) << pattern << " in " << text;
    }
    if (pattern.find(pattern[0], 1) == std::string::npos) {
      ASSERT_EQ(found, int32_t(first)) << pattern << " in " << text;
    }
    // Ignoring case is the same pass over upper-cased texts.
    std::string upperPattern = pattern, upperText = text;
    strupper(upperPattern.data());
    strupper(upperText.data());
    ASSERT_EQ(striidx(pattern.c_str(), text.c_str()),
              stridx(upperPattern.c_str(), upperText.c_str()));
  }
}
