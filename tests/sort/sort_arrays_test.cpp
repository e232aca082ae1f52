// SPDX-License-Identifier: MIT
// fsSortArrays: parallel arrays move as whole records.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/support/test_support.h"

TEST(SortArrays, MovesEveryArrayAlongTheKeyOrder) {
  // Many equal keys, descending, with arrays of 1, 2 and 24 bytes: each
  // record's fields stay together and every position is filled once.
  std::mt19937 random(3);
  const long n = 2000;
  std::vector<int16_t> key(n);
  std::vector<uint8_t> tag(n);
  std::vector<int32_t> position(n);
  std::vector<std::array<char, 24>> wide(n);
  for (long k = 0; k < n; ++k) {
    key[size_t(k)] = int16_t(random() % 50 - 25);
    tag[size_t(k)] = uint8_t(key[size_t(k)] * 7);
    position[size_t(k)] = int32_t(k);
    wide[size_t(k)].fill(char(key[size_t(k)]));
  }
  std::vector<int16_t> before = key;
  fsSortArrays(FS_SORT_SHORT_DESC, n, 4L, 2L, key.data(), 1L, tag.data(), 4L, position.data(),
               24L, wide.data());
  EXPECT_TRUE(std::is_sorted(key.rbegin(), key.rend()));
  std::vector<int32_t> seen = position;
  std::sort(seen.begin(), seen.end());
  for (long k = 0; k < n; ++k) {
    ASSERT_EQ(seen[size_t(k)], k);
    ASSERT_EQ(key[size_t(k)], before[size_t(position[size_t(k)])]);
    ASSERT_EQ(tag[size_t(k)], uint8_t(key[size_t(k)] * 7));
    ASSERT_EQ(wide[size_t(k)][23], char(key[size_t(k)]));
  }

  // For 8-bit types the key of element k is the byte at the key array + k.
  // Bytes 05 09 01 00: keys 05, 09 are in order; the elements' first bytes are not.
  uint16_t byteKeys[] = {0x0905, 0x0001};
  fsSortArrays(FS_SORT_UCHAR, 2L, 1L, 2L, byteKeys);
  EXPECT_EQ(byteKeys[0], 0x0905);
}

TEST(SortArrays, LimitsAndErrorsLeaveTheArraysAlone) {
  std::vector<int32_t> keys = {3, 1, 2};
  std::vector<int32_t> copy = keys;
  std::string messages = fskit::test::captureStderr([&] {
    fsSortArrays(0, 3L, 1L, 4L, keys.data());
    fsSortArrays(FS_SORT_LONG, 3L, 51L);
    fsSortArrays(FS_SORT_LONG, 0L, 1L, 4L, keys.data());
    fsSortArrays(FS_SORT_DOUBLE, 3L, 1L, 4L, keys.data());  // key wider than the element
    fsSortArrays(FS_SORT_LONG, -1L, 1L, 4L, keys.data());  // once sorted nothing silently
  });
  EXPECT_EQ(messages,
            "fsSortArrays: invalid sort type, constant value 0\n"
            "fsSortArrays: too many arrays (51) to sort\n"
            "fsSortArrays: out of memory\n");
  EXPECT_EQ(keys, copy);
  // 50 arrays are accepted.
  std::vector<std::vector<int32_t>> arrays(50, keys);
  [&]<size_t... I>(std::index_sequence<I...>) {
    std::apply([](auto... args) { fsSortArrays(FS_SORT_LONG, 3L, 50L, args...); },
               std::tuple_cat(std::make_tuple(4L, arrays[I].data())...));
  }(std::make_index_sequence<50>());
  EXPECT_EQ(arrays[49], (std::vector<int32_t>{1, 2, 3}));
}
