// SPDX-License-Identifier: MIT
// The bit tables, itob grouping, bit fields and bit counts.
#include <fskit/util.h>
#include <gtest/gtest.h>

#include <bit>
#include <bitset>
#include <utility>

TEST(Bits, TablesMatchADirectComputation) {
  for (unsigned i = 0; i < 32; ++i) EXPECT_EQ(FsBitMasks[i], uint32_t{1} << i) << i;
  for (unsigned i = 0; i < 256; ++i) {
    EXPECT_EQ(FsBitCounts[i], std::popcount(i)) << i;
    EXPECT_EQ(FsBitHighs[i], std::bit_width(i)) << i;
  }
}

TEST(Bits, ItobGroupsEightsFromTheRightForEveryWidth) {
  char buf[48];
  EXPECT_STREQ(itob(0xFFFFFFFF, 34, buf), "00 11111111 11111111 11111111 11111111");
  EXPECT_STREQ(itob(1, 0, buf), "");
  const uint32_t value = 0xA5C3F00F;
  std::string all = std::bitset<32>(value).to_string();
  for (int width = 1; width <= 32; ++width) {
    std::string expected = all.substr(32 - width);
    for (int blank = width - 8; blank > 0; blank -= 8) expected.insert(size_t(blank), " ");
    std::string guard(sizeof buf, '#');
    guard.copy(buf, sizeof buf);
    EXPECT_EQ(itob(value, width, buf), buf);
    EXPECT_EQ(buf, expected) << width;
    EXPECT_EQ(buf[expected.size() + 1], '#') << width;  // nothing past the terminator
  }
}

TEST(Bits, FieldsAndCounts) {
  // Word, highest bit, bit count, field; past the range: whole word, nothing, zeros below bit 0.
  const uint32_t fields[][4] = {{0xABCD, 15, 4, 0xA},          {0xABCD, 3, 4, 0xD},
                                {0xABCD, 7, 1, 1},             {0x80000000, 31, 1, 1},
                                {0xDEADBEEF, 31, 31, 0x6F56DF77}, {0xDEADBEEF, 31, 32, 0xDEADBEEF},
                                {0xDEADBEEF, 5, 0, 0},         {0xF, 1, 4, 0xC},
                                {0xF, 40, 4, 0}};
  for (auto [word, high, count, field] : fields)
    EXPECT_EQ(fsGetBits(word, high, count), field) << high << " " << count;
  for (auto [word, count] : {std::pair{0u, 0}, {0xFFFFFFFFu, 32}, {0x80000001u, 2}, {0x01020408u, 4}})
    EXPECT_EQ(fsBitCount(word), count) << word;
}
