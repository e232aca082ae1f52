// Searching and comparing over the common length.
#include <fskit/strings.h>
#include <gtest/gtest.h>

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
