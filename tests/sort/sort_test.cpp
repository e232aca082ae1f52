// SPDX-License-Identifier: MIT
// The comparator table, fsSort, fsSortIndex, fsSortArrays and fsQsort: whatever algorithm a sort
// uses, every neighbour pair it leaves is in order under the type's comparator, nothing is lost.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <utility>
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

// Every neighbour pair of the n elements of `width` bytes at `data` in order
// under the comparator `variant` (with the sort context set for it).
testing::AssertionResult inOrder(int type, ComparatorVariant variant, const void *data, size_t width,
                                 size_t n) {
  Comparator compare = comparator(type, variant);
  const auto *bytes = static_cast<const unsigned char *>(data);
  for (size_t k = 1; k < n; ++k)
    if (compare(bytes + (k - 1) * width, bytes + k * width) > 0)
      return testing::AssertionFailure() << "elements " << k - 1 << " and " << k;
  return testing::AssertionSuccess();
}

// Elements "1a": the digit is the key, the letter tells equal keys apart.
int byDigit(const void *a, const void *b) {
  return *static_cast<const char *>(a) - *static_cast<const char *>(b);
}

int byInt(const void *a, const void *b) {
  int x = *static_cast<const int *>(a), y = *static_cast<const int *>(b);
  return x < y ? -1 : x > y;
}

// Keys of a few prefixes (0 to 300 bytes, around the multiples of eight)
// and short tails, so that many keys tie on long runs of bytes, some end
// where others go on, and some repeat. Never a NUL or a newline.
std::vector<std::string> sharedPrefixKeys(int n, unsigned seed) {
  std::mt19937 random(seed);
  const std::string alphabet = "ab \t\x01\x7f\x80\xe9\xff";
  std::vector<std::string> prefixes;
  for (size_t length : {0, 1, 7, 8, 9, 15, 16, 17, 64, 100, 300}) {
    std::string prefix;
    for (size_t k = 0; k < length; ++k) prefix += "2026-11-26T02:13:45Z host-1 app: "[k % 33];
    prefixes.push_back(prefix);
  }
  // One prefix is the start of another, and one differs from it only at its end.
  prefixes.push_back(prefixes[9] + "\xff");
  prefixes.push_back(prefixes[9].substr(0, 99) + "\x01");
  std::vector<std::string> keys;
  for (int k = 0; k < n; ++k) {
    std::string key = prefixes[random() % prefixes.size()];
    for (size_t t = random() % 4; t > 0; --t) key += alphabet[random() % alphabet.size()];
    keys.push_back(key);
  }
  // A group of identical keys large enough for every path of the sort.
  for (int k = 0; k < 1500; ++k) keys.insert(keys.begin() + random() % keys.size(), prefixes[10]);
  return keys;
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
      ASSERT_TRUE(inOrder(type, kElementField, records.data(), size_t(size), size_t(n)));
      EXPECT_EQ(asSet(records, size_t(size)), asSet(before, size_t(size)));
      // The same keys through an index, the data left in place.
      std::vector<int32_t> index = identity(size_t(n));
      fsSortIndex(type, offset, size, n, before.data(), index.data());
      EXPECT_EQ(before, unsorted);
      EXPECT_TRUE(std::is_permutation(index.begin(), index.end(), identity(size_t(n)).begin()));
      ASSERT_TRUE(inOrder(type, kIndexedField, index.data(), 4, size_t(n)));
      // Bare keys: element and key are one.
      if (numeric(type)) {
        Bytes keys;
        for (int k = 0; k < n; ++k)
          keys.insert(keys.end(), &before[size_t(k) * size + offset],
                      &before[size_t(k) * size + offset + size_t(keyBytes)]);
        fsSort(type, 0, int(keyBytes), n, keys.data());
        sortContext().size = keyBytes;
        ASSERT_TRUE(inOrder(type, kElement, keys.data(), size_t(keyBytes), size_t(n)));
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
        ASSERT_TRUE(inOrder(type, kElement, sorted[0].data(), size_t(width), n));
        Comparator compare = comparator(type, kElement);
        for (size_t k = 0; k < n; ++k)  // key for key what the radix sort gives
          ASSERT_EQ(compare(&sorted[0][k * width], &sorted[1][k * width]), 0);
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
  ASSERT_TRUE(inOrder(FS_SORT_DOUBLE, kElement, shifted.data() + 1, 8, n));
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
  fastAndOwn([&](int own) {
    fsSortIndex(FS_SORT_DOUBLE_DESC, 0, 8, int(n), keys.data(), indexes[own].data());
  });
  EXPECT_EQ(indexes[0], indexes[1]);
  Bytes records(n * 16);
  for (size_t k = 0; k < n; ++k) std::memcpy(&records[k * 16 + 8], &keys[k * 8], 8);
  const Bytes unsorted = records;
  fsSort(FS_SORT_DOUBLE_DESC, 8, 16, int(n), records.data());
  sortContext().offset = 8;
  sortContext().size = 16;
  ASSERT_TRUE(inOrder(FS_SORT_DOUBLE_DESC, kElementField, records.data(), 16, n));
  EXPECT_EQ(asSet(records, 16), asSet(unsorted, 16));
}

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
  EXPECT_TRUE(std::is_permutation(position.begin(), position.end(), identity(size_t(n)).begin()));
  for (long k = 0; k < n; ++k) {
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

// Equal keys end where the partition steps put them (a recursive transcription
// of the steps agreed on 3000 random arrays); two to seven keys, up to 26 elements.
TEST(Quicksort, EqualKeysEndWhereThePartitionStepsPutThem) {
  const std::pair<std::string, std::string> cases[] = {
      {"1a0b", "0b1a"},
      {"0a0b0c0d0e0f0g0h", "0f0e0h0g0a0d0c0b"},
      {"2a1b0c2d1e0f", "0c0f1e1b2a2d"},
      {"0a1b1c2d2e3f", "0a1c1b2e2d3f"},
      {"3a2b2c1d1e0f0g", "0f0g1d1e2b2c3a"},
      {"1a1b0c1d1e1f1g0h1i1j0k0l1m0n0o1p0q1r0s1t0u0v0w1x0y1z",
       "0n0u0h0l0s0k0q0y0v0w0c0o1z1r1t1x1a1d1e1p1b1m1j1f1g1i"},
      {"1a1b2c2d1e1f0g1h1i1j0k1l0m2n0o1p1q2r1s2t2u2v2w1x0y2z",
       "0y0g0o0k0m1l1s1x1p1q1a1e1j1b1i1h1f2v2z2w2c2d2u2t2n2r"},
      {"1a0b6c6d4e1f6g3h3i6j4k6l4m3n3o2p2q3r0s2t1u2v0w5x0y5z",
       "0s0y0w0b1u1a1f2p2v2t2q3o3r3h3i3n4m4e4k5x5z6c6d6l6j6g"},
  };
  for (auto [elements, expected] : cases) {
    fsQsort(elements.data(), uint32_t(elements.size() / 2), 2, byDigit);
    EXPECT_EQ(elements, expected);
  }
}

TEST(Quicksort, SortedEqualAndReversedInputsDoNotExhaustTheStack) {
  std::vector<int> sorted(1000000), equal(1000000, 42), reversed(20000);
  for (size_t k = 0; k < sorted.size(); ++k) sorted[k] = int(k);
  for (size_t k = 0; k < reversed.size(); ++k) reversed[k] = int(reversed.size() - k);
  std::vector<int> expected = sorted;
  fsQsort(sorted.data(), uint32_t(sorted.size()), sizeof(int), byInt);
  fsQsort(equal.data(), uint32_t(equal.size()), sizeof(int), byInt);
  fsQsort(reversed.data(), uint32_t(reversed.size()), sizeof(int), byInt);
  EXPECT_EQ(sorted, expected);
  EXPECT_TRUE(std::all_of(equal.begin(), equal.end(), [](int v) { return v == 42; }));
  EXPECT_TRUE(std::is_sorted(reversed.begin(), reversed.end()));
  // Wide elements go through the byte-wise exchange.
  std::vector<std::array<char, 100>> wide(500);
  for (size_t k = 0; k < wide.size(); ++k) wide[k].fill(char(k * 37 % 101));
  fsQsort(wide.data(), uint32_t(wide.size()), 100, byDigit);
  EXPECT_TRUE(std::is_sorted(wide.begin(), wide.end()));
}

// Text keys end at their NUL, byte keys at their element's end (NULs
// included); equal keys keep their order, both ways.
TEST(SharedPrefixSort, IndexSortMatchesAStableReferenceSort) {
  for (int type : {FS_SORT_STRING, FS_SORT_STRING_DESC, FS_SORT_BYTES, FS_SORT_BYTES_DESC}) {
    for (int n : {3, 40, 5000}) {
      SCOPED_TRACE(testing::Message() << "type " << type << " n " << n);
      std::vector<std::string> keys = sharedPrefixKeys(n, unsigned(type * n));
      const bool bytes = type >= FS_SORT_BYTES;
      size_t size = 0;
      for (const std::string &key : keys) size = std::max(size, key.size() + 1);
      std::string data(keys.size() * size, '\0');
      for (size_t k = 0; k < keys.size(); ++k) data.replace(k * size, keys[k].size(), keys[k]);
      // Byte keys run over the whole element: their padding is part of them.
      if (bytes)
        for (size_t k = 0; k < keys.size(); ++k) keys[k] = data.substr(k * size, size);
      std::vector<int32_t> index(keys.size()), expected(keys.size());
      std::iota(index.begin(), index.end(), 0);
      std::iota(expected.begin(), expected.end(), 0);
      const bool down = type % 2 == 0;
      std::stable_sort(expected.begin(), expected.end(), [&](int32_t a, int32_t b) {
        const std::string &x = keys[size_t(a)], &y = keys[size_t(b)];
        return down ? y < x : x < y;  // std::string compares unsigned bytes
      });
      fsSortIndex(type, 0, int(size), int(keys.size()), data.data(), index.data());
      ASSERT_TRUE(index == expected);  // not ASSERT_EQ: thousands of numbers
    }
  }
}

// The in-memory sort writes the lines in byte order; collapsing drops the
// empty line and repeats, and counts them.
TEST(SharedPrefixSort, InMemoryFileSortMatchesAReferenceSort) {
  fskit::test::TempDir dir;
  std::vector<std::string> lines = sharedPrefixKeys(6000, 11);
  std::string text;
  for (const std::string &line : lines) text += line + "\n";
  std::sort(lines.begin(), lines.end());
  std::string sorted;
  std::map<std::string, long> counts;
  for (const std::string &line : lines) {
    sorted += line + "\n";
    if (!line.empty()) ++counts[line];
  }
  std::string in = dir.file("in.txt"), out = dir.file("out.txt");
  fskit::test::writeText(in, text);  // CR LF on Windows, as a text file there
  struct Case {
    bool keep, counts;
  };
  for (Case c : {Case{true, false}, Case{false, false}, Case{false, true}}) {
    SCOPED_TRACE(testing::Message() << "keep " << c.keep << " counts " << c.counts);
    std::string expected;
    long lineCount = 0;
    if (c.keep) {
      expected = sorted;
      lineCount = long(lines.size());
    } else {
      // std::map orders its keys by unsigned bytes too.
      for (const auto &[line, count] : counts)
        expected += c.counts ? line + " " + std::to_string(count) + "\n" : line + "\n";
      lineCount = long(counts.size());
    }
    long result = 0;
    std::string prefix = dir.path() + "/";
    fskit::test::captureStdout(
        [&] { result = fsStrSort(in.c_str(), out.c_str(), prefix.c_str(), 0, c.keep, c.counts); });
    EXPECT_EQ(result, lineCount);
    // Not EXPECT_EQ: a failure would print megabytes.
    EXPECT_TRUE(fskit::test::readText(out) == expected);
  }
}
