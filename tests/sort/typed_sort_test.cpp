// SPDX-License-Identifier: MIT
// The comparator table, fsSort and fsSortIndex. The sorts are checked against
// the table: whatever algorithm they use, every neighbour pair they leave must
// be in order under the type's comparator, and nothing may be lost.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <random>
#include <vector>

#include "sort/sorting.h"
#include "tests/support/test_support.h"

using namespace fskit::sort;
using Bytes = std::vector<unsigned char>;

namespace {

template <class T> Bytes bytesOf(std::initializer_list<T> values) {
  Bytes out(values.size() * sizeof(T));
  std::memcpy(out.data(), std::data(values), out.size());
  return out;
}

// Elements whose keys repeat often and include the awkward values of each type.
Bytes randomElements(int type, int size, int n, std::mt19937 &random) {
  Bytes out(size_t(size) * size_t(n));
  for (auto &b : out) b = static_cast<unsigned char>(random() % 6 == 0 ? 0xff : random() % 4);
  const double specials[] = {NAN, -NAN, INFINITY, -INFINITY, -0.0, 0.0, 1.5, -2.25};
  for (int k = 0; k < n; ++k) {
    unsigned char *element = &out[size_t(k) * size_t(size)];
    if (keyKind(type) == KeyKind::Float || keyKind(type) == KeyKind::Double) {
      double value = specials[random() % 8];
      float single = float(value);
      if (keyKind(type) == KeyKind::Float) std::memcpy(element + 4, &single, 4);
      else std::memcpy(element + 4, &value, 8);
    }
    if (keyKind(type) == KeyKind::String && random() % 3 != 0) element[4 + random() % 8] = 0;
  }
  return out;
}

}  // namespace

TEST(Comparators, FollowTheRulesOfEachType) {
  struct Case {
    int type;
    Bytes a, b;
    int expected;  // comparator(type, element)(a, b)
  };
  const Case cases[] = {
      {FS_SORT_CHAR, {0xff}, {0x01}, -2},  // -1 - 1
      {FS_SORT_UCHAR, {0xff}, {0x01}, 254},
      {FS_SORT_UCHAR_DESC, {0xff}, {0x01}, -254},
      {FS_SORT_SHORT, bytesOf<int16_t>({-300}), bytesOf<int16_t>({200}), -500},
      {FS_SORT_USHORT, bytesOf<uint16_t>({65535}), bytesOf<uint16_t>({1}), 65534},
      {FS_SORT_LONG, bytesOf<int32_t>({-1}), bytesOf<int32_t>({0}), -1},
      {FS_SORT_LONG, bytesOf<int32_t>({INT32_MAX}), bytesOf<int32_t>({INT32_MIN}), 1},
      {FS_SORT_ULONG, bytesOf<uint32_t>({0}), bytesOf<uint32_t>({0xffffffff}), -1},
      {FS_SORT_ULONG_DESC, bytesOf<uint32_t>({0}), bytesOf<uint32_t>({0xffffffff}), 1},
      {FS_SORT_FLOAT, bytesOf<float>({-0.0f}), bytesOf<float>({0.0f}), 0},
      {FS_SORT_FLOAT, bytesOf<float>({NAN}), bytesOf<float>({INFINITY}), 1},
      {FS_SORT_DOUBLE, bytesOf<double>({NAN}), bytesOf<double>({-NAN}), 0},
      {FS_SORT_DOUBLE_DESC, bytesOf<double>({1.0}), bytesOf<double>({2.0}), 1},
      {FS_SORT_DOUBLE_DESC, bytesOf<double>({NAN}), bytesOf<double>({-INFINITY}), -1},
      {FS_SORT_STRING, {'a', 0, 'x', 'y'}, {'a', 0, 'z', 'z'}, 0},
      {FS_SORT_STRING, {'a', 'b', 0, 0}, {'a', 0xe9, 0, 0}, -1},
      {FS_SORT_STRING_DESC, {'a', 'b', 0, 0}, {'a', 0, 0, 0}, -1},
      {FS_SORT_BYTES, {1, 2, 3, 9}, {1, 2, 3, 4}, 5},
      {FS_SORT_BYTES, {0, 0, 0, 0}, {0, 0, 0, 0}, 0},
      {FS_SORT_BYTES_DESC, {1, 2, 3, 9}, {1, 2, 3, 4}, -5},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.type);
    sortContext().size = long(c.a.size());
    EXPECT_EQ(comparator(c.type, kElement)(c.a.data(), c.b.data()), c.expected);
    // The same keys behind a two-byte field offset and through an index.
    Bytes data(2, 0xee);
    data.insert(data.end(), c.a.begin(), c.a.end());
    data.insert(data.end(), 2, 0xee);
    data.insert(data.end(), c.b.begin(), c.b.end());
    sortContext().offset = 2;
    sortContext().size = long(c.a.size()) + 2;
    EXPECT_EQ(comparator(c.type, kElementField)(&data[0], &data[c.a.size() + 2]), c.expected);
    sortContext().data = data.data();
    int32_t first = 0, second = 1;
    long scale = keyKind(c.type) <= KeyKind::Uint8 ? 1 : long(c.a.size()) + 2;
    if (scale == 1) data[2 + 1] = c.b[0];  // 8-bit keys: element k is the byte data + k
    EXPECT_EQ(comparator(c.type, kIndexedField)(&first, &second), c.expected);
  }
}

TEST(TypedSort, EveryTypeOrdersAsItsComparatorLosingNothing) {
  std::mt19937 random(7);
  for (int type = 1; type <= 20; ++type) {
    for (int n : {2, 9, 40, 3000}) {
      SCOPED_TRACE(testing::Message() << "type " << type << " n " << n);
      const int size = type % 3 == 0 ? 20 : 16, offset = 4;  // 20: no radix on records
      long keyBytes = numeric(type) ? keySize(type) : 8;
      Bytes records = randomElements(type, size, n, random), before = records, unsorted = records;
      // Records with the key at an offset.
      fsSort(type, offset, size, n, records.data());
      sortContext().offset = offset;
      sortContext().size = size;
      for (int k = 1; k < n; ++k)
        ASSERT_LE(comparator(type, kElementField)(&records[size_t(k - 1) * size],
                                                   &records[size_t(k) * size]), 0);
      auto asSet = [&](Bytes b) {
        std::vector<Bytes> set;
        for (int k = 0; k < n; ++k) set.emplace_back(&b[size_t(k) * size], &b[size_t(k + 1) * size]);
        std::sort(set.begin(), set.end());
        return set;
      };
      EXPECT_EQ(asSet(records), asSet(before));
      // The same keys through an index, the data left in place.
      std::vector<int32_t> index(static_cast<size_t>(n));
      std::iota(index.begin(), index.end(), 0);
      fsSortIndex(type, offset, size, n, before.data(), index.data());
      EXPECT_EQ(before, unsorted);
      std::vector<int32_t> sortedIndex = index;
      std::sort(sortedIndex.begin(), sortedIndex.end());
      for (int k = 0; k < n; ++k) ASSERT_EQ(sortedIndex[size_t(k)], k);
      for (int k = 1; k < n; ++k)
        ASSERT_LE(comparator(type, kIndexedField)(&index[size_t(k - 1)], &index[size_t(k)]), 0);
      // Bare keys: element and key are one.
      if (numeric(type)) {
        Bytes keys;
        for (int k = 0; k < n; ++k)
          keys.insert(keys.end(), &before[size_t(k) * size + offset],
                      &before[size_t(k) * size + offset + size_t(keyBytes)]);
        fsSort(type, 0, int(keyBytes), n, keys.data());
        sortContext().size = keyBytes;
        for (int k = 1; k < n; ++k)
          ASSERT_LE(comparator(type, kElement)(&keys[size_t(k - 1) * size_t(keyBytes)],
                                               &keys[size_t(k) * size_t(keyBytes)]), 0);
      }
    }
  }
}

TEST(TypedSort, OffsetsTextKeysAndRejectedCalls) {
  // An offset of 0 or less means the key is at the element's start.
  uint16_t pairs[] = {2, 1, 1, 2, 3, 0};
  fsSort(FS_SORT_USHORT, -3, 4, 3, pairs);
  EXPECT_EQ(std::vector<uint16_t>(pairs, pairs + 6), (std::vector<uint16_t>{1, 2, 2, 1, 3, 0}));
  fsSort(FS_SORT_USHORT, 2, 4, 3, pairs);
  EXPECT_EQ(std::vector<uint16_t>(pairs, pairs + 6), (std::vector<uint16_t>{3, 0, 2, 1, 1, 2}));
  // Texts that fill their element end there; the next element is not read.
  char names[3][4] = {{'b', 'b', 'b', 'b'}, {'b', 'b', 'b', 0}, {'a', 0, 'z', 'z'}};
  fsSort(FS_SORT_STRING, 0, 4, 3, names);
  EXPECT_EQ(std::string(names[0], 12), std::string("a\0zzbbb\0bbbb", 12));
  // Invalid types, and keys that would reach past the element, change nothing.
  int32_t untouched[] = {3, 2, 1}, index[] = {0, 1, 2};
  std::string messages = fskit::test::captureStderr([&] {
    fsSort(0, 0, 4, 3, untouched);
    fsSortIndex(21, 0, 4, 3, untouched, index);
    fsSort(FS_SORT_DOUBLE, 0, 4, 3, untouched);
    fsSort(FS_SORT_LONG, 1, 4, 3, untouched);
  });
  EXPECT_EQ(messages,
            "fsSort: invalid sort type, constant value 0\n"
            "fsSortIndex: invalid sort type, constant value 21\n");
  EXPECT_EQ(std::vector<int32_t>(untouched, untouched + 3), (std::vector<int32_t>{3, 2, 1}));
}
