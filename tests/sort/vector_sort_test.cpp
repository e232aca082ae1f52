// SPDX-License-Identifier: MIT
// Long runs of 32- and 64-bit keys (vqsort where the build has Highway) sorted
// as they come and with the radix sorts forced: both in order, and agreeing.
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

// Runs `sort(0)` as the build sorts, then `sort(1)` with the radix sorts forced.
template <class Sort> void fastAndOwn(Sort sort) {
  sort(0);
  sortContext().ownSortsOnly = true;
  sort(1);
  sortContext().ownSortsOnly = false;
}

std::vector<int32_t> identity(size_t n) {
  std::vector<int32_t> index(n);
  std::iota(index.begin(), index.end(), 0);
  return index;
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
    for (Fill fill : {Fill::Mixed, Fill::AllEqual, Fill::AllNaN}) {
      if (fill == Fill::AllNaN && type < FS_SORT_FLOAT) continue;
      for (size_t n : sizes) {
        SCOPED_TRACE(testing::Message() << "type " << type << " fill " << int(fill) << " n " << n);
        const int width = int(keySize(type));
        const Bytes keys = makeKeys(type, n, fill, random);
        Bytes sorted[2] = {keys, keys};  // as the build sorts, radix sorts forced
        fastAndOwn([&](int own) { fsSort(type, 0, width, int(n), sorted[own].data()); });
        sortContext().size = width;
        Comparator compare = comparator(type, kElement);
        for (size_t k = 0; k < n; ++k) {
          // In order, and key for key what the radix sort gives.
          if (k > 0) {
            ASSERT_LE(compare(&sorted[0][(k - 1) * width], &sorted[0][k * width]), 0);
          }
          ASSERT_EQ(compare(&sorted[0][k * width], &sorted[1][k * width]), 0);
        }
        EXPECT_EQ(asSet(sorted[0], size_t(width)), asSet(keys, size_t(width)));  // every bit kept
        // Index sorts of an identity index (element numbers rise) and of a
        // shuffled one with repeated elements: the same permutation exactly.
        std::vector<int32_t> shuffled(n);
        for (auto &element : shuffled) element = int32_t(random() % n);
        for (const auto &index : {identity(n), shuffled}) {
          std::vector<int32_t> indexes[2] = {index, index};
          fastAndOwn([&](int own) { fsSortIndex(type, 0, width, int(n), keys.data(), indexes[own].data()); });
          ASSERT_EQ(indexes[0], indexes[1]);
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
    for (size_t k = 0; k < n; ++k) {
      std::memcpy(&records[k * 20 + 4], &recordKeys[k * width], width);
      std::memcpy(&records[k * 20 + 16], &k, 4);
    }
    Bytes sorted[2] = {records, records}, sortedKeys[2] = {recordKeys, recordKeys};
    std::vector<int32_t> orders[2] = {identity(n), identity(n)}, indexes[2] = {identity(n), identity(n)};
    fastAndOwn([&](int own) {
      fsSortIndex(type, 4, 20, int(n), records.data(), indexes[own].data());
      fsSort(type, 4, 20, int(n), sorted[own].data());
      fsSortArrays(type, long(n), 2, long(width), sortedKeys[own].data(), 4L, orders[own].data());
    });
    EXPECT_EQ(sorted[0], sorted[1]);
    EXPECT_EQ(sortedKeys[0], sortedKeys[1]);
    EXPECT_EQ(orders[0], orders[1]);
    EXPECT_EQ(indexes[0], indexes[1]);
  }
}

TEST(VectorSort, RunsLargeEnoughForHugePages) {
  // Working memory of several megabytes, which comes in huge pages on Linux.
  std::mt19937 random(3);
  const size_t n = 300000;
  const Bytes keys = makeKeys(FS_SORT_DOUBLE_DESC, n, Fill::Mixed, random);
  std::vector<int32_t> indexes[2] = {identity(n), identity(n)};
  fastAndOwn([&](int own) { fsSortIndex(FS_SORT_DOUBLE_DESC, 0, 8, int(n), keys.data(), indexes[own].data()); });
  EXPECT_EQ(indexes[0], indexes[1]);
  Bytes records(n * 16);
  for (size_t k = 0; k < n; ++k) std::memcpy(&records[k * 16 + 8], &keys[k * 8], 8);
  const Bytes unsorted = records;
  fsSort(FS_SORT_DOUBLE_DESC, 8, 16, int(n), records.data());
  sortContext().offset = 8;
  sortContext().size = 16;
  for (size_t k = 1; k < n; ++k)
    ASSERT_LE(comparator(FS_SORT_DOUBLE_DESC, kElementField)(&records[(k - 1) * 16], &records[k * 16]), 0);
  EXPECT_EQ(asSet(records, 16), asSet(unsorted, 16));
}
