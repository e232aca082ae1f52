// SPDX-License-Identifier: MIT
// Lookups in identification tables: abbreviations, ties, case and the binary search.
#include <fskit/util.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

const FsIdentEntry kCommands[] = {{"list", 1}, {"load", 2}, {"log", 3},  {"set", -1},
                                  {"setup", -2}, {"LOGIN", 6}, {"", 99}};
const FsIdentEntry kEmpty[] = {{"", 7}};

int32_t lengthMinusKey(const char *name, int32_t key) { return int32_t(std::strlen(name)) - key; }

int compareCalls = 0;
int32_t numberMinusKey(const char *name, int32_t key) {
  ++compareCalls;
  return std::atoi(name) - key;
}

}  // namespace

TEST(Identify, UniqueNameTakesAbbreviationsAndReportsTies) {
  struct Case { const char *name; int32_t expected; };
  for (Case c : {Case{"li", 1}, {"lo", -1}, {"log", 3}, {"x", -2}, {"", -1}, {"set", -1},
                 {"setu", -2}, {"Li", -2}, {"LOGI", 6}, {"lists", -2}})
    EXPECT_EQ(identifyUniqueName(kCommands, c.name), c.expected) << c.name;
  EXPECT_EQ(identifyUniqueName(kEmpty, ""), -2);
  EXPECT_EQ(identifyUniqueName(nullptr, "x"), -2);
}

TEST(Identify, NameAndConstantLookups) {
  // 99 is the end entry's value.
  for (auto [value, name] : {std::pair{2, "load"}, {9, "Undefined"}, {99, "Undefined"}})
    EXPECT_STREQ(identifyName(kCommands, value), name) << value;
  EXPECT_STREQ(identifyName(kEmpty, 7), "Undefined");
  for (auto [name, value] : {std::pair{"LOAD", 2}, {"login", 6}, {"lo", -1}, {"", -1}})
    EXPECT_EQ(identifyConst(kCommands, name), value) << name;
  // By length: the first entry of length 3; none of 8.
  for (auto [length, value] : {std::pair{3, 3}, {5, -2}, {8, -1}})
    EXPECT_EQ(identifyConstC(kCommands, length, lengthMinusKey), value) << length;
  EXPECT_EQ(identifyConstC(kEmpty, 0, lengthMinusKey), -1);
}

TEST(Identify, BinarySearchFindsEveryEntryOfEveryPrefix) {
  const FsIdentEntry sorted[] = {{"10", 100}, {"20", 200}, {"30", 300}, {"40", 400},
                                 {"50", 500}, {"60", 600}, {"70", 700}};
  for (int32_t count = 0; count <= 7; ++count)
    for (int32_t key = 5; key <= 80; key += 5) {
      bool present = key % 10 == 0 && key / 10 <= count;
      int32_t index = 42;
      compareCalls = 0;
      int32_t value = identBSrchConst(sorted, &count, key, &index, numberMinusKey);
      EXPECT_EQ(value, present ? key * 10 : -1) << count << " " << key;
      EXPECT_EQ(index, present ? key / 10 - 1 : -1);
      EXPECT_LE(compareCalls, count == 0 ? 0 : 3);
    }
  // Among equal entries the first one the halving lands on is taken.
  const FsIdentEntry ties[] = {{"1", 1}, {"2", 2}, {"2", 3}, {"2", 4}, {"3", 5}};
  int32_t five = 5, index = 0;
  EXPECT_EQ(identBSrchConst(ties, &five, 2, &index, numberMinusKey), 3);
  EXPECT_EQ(index, 2);
  int32_t negative = -3;
  EXPECT_EQ(identBSrchConst(sorted, &negative, 10, &index, numberMinusKey), -1);
  EXPECT_EQ(index, -1);
}
