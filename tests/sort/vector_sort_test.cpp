// SPDX-License-Identifier: MIT
// Long runs of 32- and 64-bit keys, which builds with Highway sort by vqsort:
// each case is sorted twice, once as it comes and once with the radix sorts
// forced, and both results must follow the type's comparator and agree (index
// sorts exactly, since both keep equal keys in their order). Without Highway
// both runs take the radix sorts and still check them.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <random>
#include <vector>

#include "sort/sorting.h"

using namespace fskit::sort;
using Bytes = std::vector<unsigned char>;

namespace {

enum class Fill { Mixed, AllEqual, AllNaN };

// Keys with repeats, extremes, both zeros and NaNs of both signs and
// several payloads.
Bytes makeKeys(int type, size_t n, Fill fill, std::mt19937 &random) {
  const size_t width = size_t(keySize(type));
  const bool isFloat = keyKind(type) == KeyKind::Float || keyKind(type) == KeyKind::Double;
  Bytes out(n * width);
  for (size_t k = 0; k < n; ++k) {
    unsigned char *key = &out[k * width];
    double value = fill == Fill::AllEqual ? 3.0 : double(int(random() % 64) - 32) * 0.75;
    uint64_t pattern = 0;
    switch (fill == Fill::AllNaN ? 4 + random() % 2 : fill == Fill::AllEqual ? 9 : random() % 12) {
      case 0: value = -0.0; break;
      case 1: value = INFINITY; break;
      case 2: value = -INFINITY; break;
      case 3: value = 1e300 * (random() % 2 ? 1 : -1); break;
      case 4: value = NAN; break;
      case 5: value = -NAN; break;
      case 6: pattern = random() % 2 ? ~uint64_t(0) : uint64_t(random()) << 32 | random(); break;
      default: break;
    }
    if (isFloat && (fill == Fill::AllNaN || pattern == 0)) {
      if (keyKind(type) == KeyKind::Float) {
        float single = float(value);
        std::memcpy(key, &single, 4);
        if (std::isnan(single)) key[0] = static_cast<unsigned char>(random());  // payload
      } else {
        std::memcpy(key, &value, 8);
        if (std::isnan(value)) key[0] = static_cast<unsigned char>(random());
      }
    } else {
      if (pattern == 0)
        pattern = std::fabs(value) < 1e6 ? uint64_t(int64_t(value * 4)) : value > 0 ? 0x7fffffff : 0x80000000;
      std::memcpy(key, &pattern, width);
    }
  }
  return out;
}

// Sorts with the radix sorts forced when `own`, and restores the switch.
template <class Sort> void sortWith(bool own, Sort sort) {
  sortContext().ownSortsOnly = own;
  sort();
  sortContext().ownSortsOnly = false;
}

std::vector<Bytes> asSet(const Bytes &keys, size_t width) {
  std::vector<Bytes> set;
  for (size_t k = 0; k < keys.size() / width; ++k)
    set.emplace_back(keys.begin() + long(k * width), keys.begin() + long((k + 1) * width));
  std::sort(set.begin(), set.end());
  return set;
}

}  // namespace

TEST(VectorSort, BareKeysAndIndexesAgreeWithTheRadixSortsAroundTheThreshold) {
  std::mt19937 random(11);
  const size_t sizes[] = {kVectorRun - 1, kVectorRun, kVectorRun + 1, 5 * kVectorRun + 3};
  for (int type = FS_SORT_LONG; type <= FS_SORT_DOUBLE_DESC; ++type) {
    const bool isFloat = type >= FS_SORT_FLOAT;
    for (Fill fill : {Fill::Mixed, Fill::AllEqual, Fill::AllNaN}) {
      if (fill == Fill::AllNaN && !isFloat) continue;
      for (size_t n : sizes) {
        SCOPED_TRACE(testing::Message() << "type " << type << " fill " << int(fill) << " n " << n);
        const int width = int(keySize(type));
        const Bytes keys = makeKeys(type, n, fill, random);
        Bytes fast = keys, own = keys;
        sortWith(false, [&] { fsSort(type, 0, width, int(n), fast.data()); });
        sortWith(true, [&] { fsSort(type, 0, width, int(n), own.data()); });
        sortContext().size = width;
        Comparator compare = comparator(type, kElement);
        for (size_t k = 0; k < n; ++k) {
          // In order, and key for key what the radix sort gives.
          if (k > 0) {
            ASSERT_LE(compare(&fast[(k - 1) * width], &fast[k * width]), 0);
          }
          ASSERT_EQ(compare(&fast[k * width], &own[k * width]), 0);
        }
        EXPECT_EQ(asSet(fast, size_t(width)), asSet(keys, size_t(width)));  // every bit kept
        // Index sorts of an identity index (element numbers rise) and of a
        // shuffled one with repeated elements: the same permutation exactly.
        std::vector<int32_t> identity(n), shuffled(n);
        std::iota(identity.begin(), identity.end(), 0);
        for (auto &element : shuffled) element = int32_t(random() % n);
        for (const auto &index : {identity, shuffled}) {
          std::vector<int32_t> fastIndex = index, ownIndex = index;
          sortWith(false, [&] { fsSortIndex(type, 0, width, int(n), keys.data(), fastIndex.data()); });
          sortWith(true, [&] { fsSortIndex(type, 0, width, int(n), keys.data(), ownIndex.data()); });
          ASSERT_EQ(fastIndex, ownIndex);
        }
      }
    }
  }
}

TEST(VectorSort, UnalignedKeysRecordsAndParallelArrays) {
  std::mt19937 random(5);
  const size_t n = 3 * kVectorRun;
  // Keys one byte off their alignment sort all the same.
  const Bytes keys = makeKeys(FS_SORT_DOUBLE, n, Fill::Mixed, random);
  Bytes shifted(1, 0);
  shifted.insert(shifted.end(), keys.begin(), keys.end());
  fsSort(FS_SORT_DOUBLE, 0, 8, int(n), shifted.data() + 1);
  sortContext().size = 8;
  for (size_t k = 1; k < n; ++k)
    ASSERT_LE(comparator(FS_SORT_DOUBLE, kElement)(&shifted[1 + (k - 1) * 8], &shifted[1 + k * 8]), 0);
  // 20-byte records, the key 4 bytes in, go through an index sort, as
  // fsSortArrays does: the same elements and permutations either way.
  for (int type : {FS_SORT_FLOAT_DESC, FS_SORT_DOUBLE, FS_SORT_ULONG}) {
    SCOPED_TRACE(type);
    Bytes records(n * 20);
    const Bytes recordKeys = makeKeys(type, n, Fill::Mixed, random);
    const size_t width = size_t(keySize(type));
    std::vector<int32_t> fastOrder(n), ownOrder(n), fastIndex(n), ownIndex(n);
    for (size_t k = 0; k < n; ++k) {
      std::memcpy(&records[k * 20 + 4], &recordKeys[k * width], width);
      std::memcpy(&records[k * 20 + 16], &k, 4);
    }
    std::iota(fastOrder.begin(), fastOrder.end(), 0);
    std::iota(ownOrder.begin(), ownOrder.end(), 0);
    std::iota(fastIndex.begin(), fastIndex.end(), 0);
    std::iota(ownIndex.begin(), ownIndex.end(), 0);
    Bytes fast = records, own = records;
    Bytes fastKeys = recordKeys, ownKeys = recordKeys;
    sortWith(false, [&] {
      fsSortIndex(type, 4, 20, int(n), records.data(), fastIndex.data());
      fsSort(type, 4, 20, int(n), fast.data());
      fsSortArrays(type, long(n), 2, long(width), fastKeys.data(), 4L, fastOrder.data());
    });
    sortWith(true, [&] {
      fsSortIndex(type, 4, 20, int(n), records.data(), ownIndex.data());
      fsSort(type, 4, 20, int(n), own.data());
      fsSortArrays(type, long(n), 2, long(width), ownKeys.data(), 4L, ownOrder.data());
    });
    EXPECT_EQ(fast, own);
    EXPECT_EQ(fastKeys, ownKeys);
    EXPECT_EQ(fastOrder, ownOrder);
    EXPECT_EQ(fastIndex, ownIndex);
  }
}

TEST(VectorSort, RunsLargeEnoughForHugePages) {
  // Working memory of several megabytes, which comes in huge pages on Linux.
  std::mt19937 random(3);
  const size_t n = 300000;
  const Bytes keys = makeKeys(FS_SORT_DOUBLE_DESC, n, Fill::Mixed, random);
  std::vector<int32_t> fastIndex(n), ownIndex(n);
  std::iota(fastIndex.begin(), fastIndex.end(), 0);
  std::iota(ownIndex.begin(), ownIndex.end(), 0);
  Bytes records(n * 16);
  for (size_t k = 0; k < n; ++k) std::memcpy(&records[k * 16 + 8], &keys[k * 8], 8);
  const Bytes unsorted = records;
  sortWith(false, [&] { fsSortIndex(FS_SORT_DOUBLE_DESC, 0, 8, int(n), keys.data(), fastIndex.data()); });
  sortWith(true, [&] { fsSortIndex(FS_SORT_DOUBLE_DESC, 0, 8, int(n), keys.data(), ownIndex.data()); });
  EXPECT_EQ(fastIndex, ownIndex);
  fsSort(FS_SORT_DOUBLE_DESC, 8, 16, int(n), records.data());
  sortContext().offset = 8;
  sortContext().size = 16;
  for (size_t k = 1; k < n; ++k)
    ASSERT_LE(comparator(FS_SORT_DOUBLE_DESC, kElementField)(&records[(k - 1) * 16], &records[k * 16]), 0);
  EXPECT_EQ(asSet(records, 16), asSet(unsorted, 16));
}
