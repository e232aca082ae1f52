// SPDX-License-Identifier: MIT
// The comparator table and the sorts in memory: every neighbour pair a sort leaves is in order
// under the type's comparator, nothing lost. fsStrSort and `fskit sort`: texts, merges, failures.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "sort/sorting.h"
#include "tests/support/test_support.h"

using namespace fskit::sort;
using namespace fskit::test;
using Bytes = std::vector<unsigned char>;

namespace {

template <class T> Bytes bytesOf(std::initializer_list<T> values) {
  Bytes out(values.size() * sizeof(T));
  std::memcpy(out.data(), std::data(values), out.size());
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

// Records whose bytes repeat often, the key 4 bytes in: numbers as makeKeys gives them, texts
// that end at a NUL two times in three.
Bytes randomElements(int type, int size, int n, std::mt19937 &random) {
  Bytes out(size_t(size) * size_t(n));
  for (auto &b : out) b = static_cast<unsigned char>(random() % 6 == 0 ? 0xff : random() % 4);
  const Bytes keys = numeric(type) ? makeKeys(type, size_t(n), Fill::Mixed, random) : Bytes{};
  const size_t width = numeric(type) ? size_t(keySize(type)) : 0;
  for (size_t k = 0; k < size_t(n); ++k) {
    unsigned char *element = &out[k * size_t(size)];
    if (numeric(type)) std::memcpy(element + 4, &keys[k * width], width);
    else if (random() % 3 != 0) element[4 + random() % 8] = 0;
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


struct Sorted {
  long result;
  std::string printed, output;
};

Sorted sortFile(const TempDir &dir, const std::string &content, long buffer, bool keep, bool counts,
                std::string output = "", std::string prefix = "", bool asText = false) {
  std::string input = dir.file("in.txt");
  if (output.empty()) output = dir.file("out.txt");
  if (prefix.empty()) prefix = dir.path() + "/";
  (asText ? writeText : writeFile)(input, content);
  bool inDir = output.rfind(dir.path(), 0) == 0;  // never remove or read /dev/full
  if (inDir) std::filesystem::remove(output);
  Sorted s;
  s.printed = captureStdout([&] {
    s.result = fsStrSort(input.c_str(), output.c_str(), prefix.c_str(), buffer, keep, counts);
  });
  // Read as text: the outputs are text files of the platform.
  s.output = inDir && fileExists(output) ? readText(output) : "<none>";
  return s;
}

int workFilesLeft(const TempDir &dir) {
  int left = 0;
  for (const auto &entry : std::filesystem::directory_iterator(dir.path()))
    left += entry.path().filename().string().rfind("sort_", 0) == 0;
  return left;
}

// Lines from a vocabulary (many repeat) of words sharing prefixes of a stem (around the 8 bytes a
// key carries, up to `longest`) and up to three more bytes: blanks, bytes above 0x7f, the empty
// line; below the newline only with `low` (the merge orders "a\tb" before "a"). No NUL or newline.
std::vector<std::string> generatedLines(int lines, size_t longest, unsigned seed, bool low) {
  std::mt19937 random(seed);
  const std::string alphabet = std::string("abcABZ09 \v~\x80\xe9\xff") + (low ? "\x01\t" : "");
  std::string stem;
  for (size_t k = 0; k < longest; ++k) stem += alphabet[random() % alphabet.size()];
  const size_t lengths[] = {0, 1, 7, 8, 9, 15, 16, 17, 64, longest};
  std::vector<std::string> vocabulary(300), out;
  for (auto &word : vocabulary) {
    word = stem.substr(0, lengths[random() % 10]);
    for (size_t k = random() % 4; k > 0; --k) word += alphabet[random() % alphabet.size()];
  }
  for (int k = 0; k < lines; ++k) out.push_back(vocabulary[random() % vocabulary.size()]);
  return out;
}

ToolResult expectTool(const std::vector<std::string> &args, int status, const std::string &input = "",
                      const std::string &workDir = "") {
  ToolResult result = runTool(args, input, workDir);
  EXPECT_EQ(result.status, status) << result.err;
  return result;
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
    if (keyKind(c.type) <= KeyKind::Uint8) data[2 + 1] = c.b[0];  // 8-bit: element k at data + k
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

TEST(TypedSort, OffsetsAndTextKeys) {
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
}

TEST(VectorSort, BareKeysAndIndexesAgreeWithTheRadixSortsAroundTheThreshold) {
  std::mt19937 random(11);
  // The last: working memory of several megabytes, which comes in huge pages on Linux.
  const size_t sizes[] = {kVectorRun - 1, kVectorRun, kVectorRun + 1, 5 * kVectorRun + 3, 300000};
  for (int type = FS_SORT_LONG; type <= FS_SORT_DOUBLE_DESC; ++type) {
    for (Fill fill : {Fill::Mixed, Fill::AllEqual, Fill::AllNaN}) {
      if (fill == Fill::AllNaN && type < FS_SORT_FLOAT) continue;
      for (size_t n : sizes) {
        if (n == 300000 && (type != FS_SORT_DOUBLE_DESC || fill != Fill::Mixed)) continue;
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
  Bytes shifted = makeKeys(FS_SORT_DOUBLE, n, Fill::Mixed, random);
  shifted.insert(shifted.begin(), 0);
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
    EXPECT_EQ(std::tie(sorted[0], sortedKeys[0]), std::tie(sorted[1], sortedKeys[1]));
    EXPECT_EQ(std::tie(orders[0], indexes[0]), std::tie(orders[1], indexes[1]));
  }
}

TEST(SortArrays, MovesEveryArrayAlongTheKeyOrder) {
  // Many equal keys, descending, with arrays of 1, 2 and 24 bytes: each
  // record's fields stay together and every position is filled once.
  std::mt19937 random(3);
  const long n = 2000;
  std::vector<int16_t> key(n);
  std::vector<uint8_t> tag(n);
  std::vector<int32_t> position = identity(size_t(n));
  std::vector<std::array<char, 24>> wide(n);
  for (long k = 0; k < n; ++k) {
    key[size_t(k)] = int16_t(random() % 50 - 25);
    tag[size_t(k)] = uint8_t(key[size_t(k)] * 7);
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

// Invalid types, too many arrays, and keys that would reach past the element change nothing.
TEST(SortArrays, RejectedCallsOfEverySortChangeNothing) {
  std::vector<int32_t> keys = {3, 1, 2}, index = {0, 1, 2};
  std::string messages = captureStderr([&] {
    fsSort(0, 0, 4, 3, keys.data());
    fsSortIndex(21, 0, 4, 3, keys.data(), index.data());
    fsSort(FS_SORT_DOUBLE, 0, 4, 3, keys.data());
    fsSort(FS_SORT_LONG, 1, 4, 3, keys.data());
    fsSortArrays(0, 3L, 1L, 4L, keys.data());
    fsSortArrays(FS_SORT_LONG, 3L, 51L);
    fsSortArrays(FS_SORT_LONG, 0L, 1L, 4L, keys.data());
    fsSortArrays(FS_SORT_DOUBLE, 3L, 1L, 4L, keys.data());  // key wider than the element
    fsSortArrays(FS_SORT_LONG, -1L, 1L, 4L, keys.data());  // once sorted nothing silently
  });
  EXPECT_EQ(messages,
            "fsSort: invalid sort type, constant value 0\n"
            "fsSortIndex: invalid sort type, constant value 21\n"
            "fsSortArrays: invalid sort type, constant value 0\n"
            "fsSortArrays: too many arrays (51) to sort\n"
            "fsSortArrays: out of memory\n");
  EXPECT_EQ(keys, (std::vector<int32_t>{3, 1, 2}));
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
      {"1a0b6c6d4e1f6g3h3i6j4k6l4m3n3o2p2q3r0s2t1u2v0w5x0y5z",
       "0s0y0w0b1u1a1f2p2v2t2q3o3r3h3i3n4m4e4k5x5z6c6d6l6j6g"},
  };
  for (auto [elements, expected] : cases) {
    fsQsort(elements.data(), uint32_t(elements.size() / 2), 2, byDigit);
    EXPECT_EQ(elements, expected);
  }
}

TEST(Quicksort, SortedEqualAndReversedInputsDoNotExhaustTheStack) {
  std::vector<int> sorted = identity(1000000), equal(1000000, 42), reversed(20000);
  for (size_t k = 0; k < reversed.size(); ++k) reversed[k] = int(reversed.size() - k);
  fsQsort(sorted.data(), uint32_t(sorted.size()), sizeof(int), byInt);
  fsQsort(equal.data(), uint32_t(equal.size()), sizeof(int), byInt);
  fsQsort(reversed.data(), uint32_t(reversed.size()), sizeof(int), byInt);
  EXPECT_TRUE(sorted == identity(sorted.size()));  // not EXPECT_EQ: a million numbers
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
      std::vector<std::string> keys = generatedLines(n, 300, unsigned(type * n), true);
      // A group of identical long keys large enough for every path of the sort, spread out.
      keys.resize(keys.size() + 1500, std::string(300, 'a'));
      std::shuffle(keys.begin(), keys.end(), std::mt19937(unsigned(n)));
      size_t size = 0;
      for (const std::string &key : keys) size = std::max(size, key.size() + 1);
      std::string data(keys.size() * size, '\0');
      for (size_t k = 0; k < keys.size(); ++k) data.replace(k * size, keys[k].size(), keys[k]);
      // Byte keys run over the whole element: their padding is part of them.
      if (type >= FS_SORT_BYTES)
        for (size_t k = 0; k < keys.size(); ++k) keys[k] = data.substr(k * size, size);
      std::vector<int32_t> index = identity(keys.size()), expected = index;
      std::stable_sort(expected.begin(), expected.end(), [&](int32_t a, int32_t b) {
        const std::string &x = keys[size_t(a)], &y = keys[size_t(b)];
        return type % 2 == 0 ? y < x : x < y;  // even types descend; unsigned bytes compared
      });
      fsSortIndex(type, 0, int(size), int(keys.size()), data.data(), index.data());
      ASSERT_TRUE(index == expected);  // not ASSERT_EQ: thousands of numbers
    }
  }
}

TEST(FileSort, PrintsProgressAndMergesChunksAsDocumented) {
  TempDir dir;
  Sorted keep = sortFile(dir, "c\nb\na\nb\n", 4, true, false);
  EXPECT_EQ(keep.printed, "Sorting file " + dir.file("in.txt") + " with 8 bytes, 4 bytes at a time\n"
                          "Indexing 2 records of 4 bytes ...\nSorting 2 records ...\n"
                          "Writing output file " + dir.path() + "/sort_0.tmp ...\n"
                          "Indexing 2 records of 4 bytes ...\nSorting 2 records ...\n"
                          "Writing output file " + dir.path() + "/sort_1.tmp ...\n"
                          "Merging 2 work files ...\n4 records written\n");
  EXPECT_EQ(keep.output, "a\nb\nb\nc\n");
  EXPECT_EQ(keep.result, 4);
  // In memory: empty lines vanish when collapsing, and bytes after the last
  // newline are dropped. (Its texts: SortTool.ArgumentsStreamsAndLibraryTexts.)
  EXPECT_EQ(sortFile(dir, "b\n\na\nb\n\nzz", 0, false, true).output, "a 1\nb 2\n");
  Sorted everything = sortFile(dir, "b\n\na\nb\n\nzz", 1000, true, true);
  EXPECT_EQ(everything.output, "\n\na\nb\nb\n");
  EXPECT_EQ(everything.result, 5);
  EXPECT_EQ(workFilesLeft(dir), 0);
}

// Against a reference sort by bytes: in memory (where bytes below the newline sort as any other),
// in ten chunks, and in enough chunks for several merge passes.
TEST(FileSort, MatchesAByteSortInMemoryInChunksAndInMergePasses) {
  // Windows reads the input as a text stream, whose seek back after a chunk needs CR LF.
#if defined(_WIN32)
  const std::string kLineEnd = "\r\n";
#else
  const std::string kLineEnd = "\n";
#endif
  TempDir dir;
  for (size_t longest : {30, 300, 4000}) {
    const bool inMemory = longest == 300;
    std::vector<std::string> lines =
        generatedLines(longest > 300 ? 400 : 6000, longest, unsigned(longest), inMemory);
    std::string text, sorted, unique, counted;
    for (const std::string &line : lines) text += line + kLineEnd;
    std::sort(lines.begin(), lines.end());  // std::string compares unsigned bytes
    std::map<std::string, long> counts;
    for (const std::string &line : lines) {
      sorted += line + "\n";
      if (!line.empty() && counts[line]++ == 0) unique += line + "\n";  // the empty line vanishes
    }
    for (const auto &[line, count] : counts) counted += line + " " + std::to_string(count) + "\n";
    const long size = long(text.size());
    for (long buffer : inMemory ? std::vector<long>{0} : std::vector<long>{size / 10, size / 45}) {
      SCOPED_TRACE(testing::Message() << "longest " << longest << " buffer " << buffer);
      Sorted all = sortFile(dir, text, buffer, true, false);
      EXPECT_EQ(all.result, long(lines.size()));
      EXPECT_TRUE(all.output == sorted);  // not EXPECT_EQ: a failure would print megabytes
      EXPECT_TRUE(sortFile(dir, text, buffer, false, false).output == unique);
      Sorted withCounts = sortFile(dir, text, buffer, false, true);
      EXPECT_EQ(workFilesLeft(dir), 0);
      if (inMemory) {
        EXPECT_EQ(withCounts.result, long(counts.size()));
        EXPECT_TRUE(withCounts.output == counted);
        continue;
      }
      // Counts per chunk: "x 2" from two chunks is one line, so the counts of
      // a text add up to no more than its true count, and every text is there.
      std::map<std::string, long> ours;
      std::istringstream stream(withCounts.output);
      for (std::string line; std::getline(stream, line);)
        ours[line.substr(0, line.rfind(' '))] += std::stol(line.substr(line.rfind(' ') + 1));
      ASSERT_EQ(ours.size(), counts.size());
      for (auto [line, count] : ours) EXPECT_LE(count, counts[line]);
    }
  }
}

TEST(FileSort, FailuresPrintTheirTextAndLeaveNoWorkFile) {
  TempDir dir;
  std::string in = dir.file("in.txt"), missing = dir.path() + "/no/out.txt";
  struct Case {
    std::string content;
    long buffer;
    std::string output, prefix, lastLines;
  };
  std::vector<Case> cases = {
      {"", 0, "", "", "Sorting file " + in + " with 0 bytes, in memory 0\n0 records written\n"},
      {"b\na\n", 0, missing, "", "Cannot open file " + missing + "\n0 records written\n"},
      {"b\na\n", 2, missing, "", "Cannot open output file " + missing + "\n0 records written\n"},
      {"b\na\n", 2, "", dir.path() + "/no/", "Cannot open file " + dir.path() + "/no/sort_0.tmp\n0 records written\n"},
  };
#if !defined(_WIN32)  // a device that fails every write
  cases.push_back({"b\na\n", 0, "/dev/full", "", "Error writing output file\n"});
  cases.push_back({"b\na\n", 2, "/dev/full", "", "Error writing output file\n"});
#endif
  for (const Case &c : cases) {
    SCOPED_TRACE(c.lastLines);
    Sorted s = sortFile(dir, c.content, c.buffer, true, false, c.output, c.prefix);
    EXPECT_EQ(s.result, 0);
    EXPECT_TRUE(s.printed.ends_with(c.lastLines)) << s.printed;
    EXPECT_EQ(s.output, "<none>");
    EXPECT_EQ(workFilesLeft(dir), 0);
  }
  for (std::string unreadable : {dir.file("absent"), dir.path()}) {
    std::string printed = captureStdout([&] {
      EXPECT_EQ(fsStrSort(unreadable.c_str(), dir.file("out").c_str(), "", 0, 1, 0), 0);
    });
    EXPECT_EQ(printed, "Cannot open input file " + unreadable + "\n");
  }
  // A work file left by an earlier sort with the same prefix goes at the start.
  writeFile(dir.file("sort_7.tmp"), "old\n");
  sortFile(dir, "x\n", 0, true, false);
  EXPECT_EQ(workFilesLeft(dir), 0);
  // A line longer than the buffer ends the chunk phase.
  EXPECT_EQ(sortFile(dir, "b\na\nlong line\nc\n", 4, true, false).output, "a\nb\n");
}

TEST(FileSort, MergeComparesWholeLinesWithTheirNewline) {
  struct Case {
    const char *input;
    long buffer;
    bool keep, counts;
    const char *output;
  };
  const Case cases[] = {
      // The merge took "a" (a prefix) before "a\tb"; with the newline, '\t' < '\n'.
      {"a\na\tb\n", 4, true, false, "a\tb\na\n"},
      {"a\tb\na\n", 4, true, false, "a\tb\na\n"},
      {"ab\nab\x01z\n", 5, true, false, "ab\x01z\nab\n"},  // 0x01 too sorts before the newline
      {"a\nab\n", 3, true, false, "a\nab\n"},  // bytes above it put the shorter line first
      // Counted lines were ordered by their text ("a 6" before "a 1 1"), not as whole lines.
      {"a\na\na\na\na\na\na 1\n", 12, false, true, "a 1 1\na 6\n"},
      {"a\na\na\tx\n", 4, false, true, "a\tx 1\na 2\n"},  // "a\t 1" is below "a 2" as a line
      {"b\na\n", 0, true, false, "a\nb\n"},  // in memory
  };
  TempDir dir;
  for (const Case &c : cases) {
    SCOPED_TRACE(c.input);
    // LF alone, then CR LF on Windows, where a seek back miscounted and the chunks never ended.
    for (bool asText : {false, true}) {
      Sorted sorted = sortFile(dir, c.input, c.buffer, c.keep, c.counts, "", "", asText);
#if defined(_WIN32)
      if (!asText) continue;  // LF alone on a text stream: the sort ends, its seeks land elsewhere
#endif
      EXPECT_EQ(sorted.output, c.output);
    }
  }
}

#if !defined(_WIN32)
TEST(FileSort, InputBeyond4GiB) {
  // A 32-bit build wrapped the size in a long (4 GiB + 4 bytes became 4), or could not stat it.
  TempDir dir;
  std::string input = dir.file("in.txt"), output = dir.file("out.txt");
  writeFile(input, "b\na\n");
  std::filesystem::resize_file(input, (uintmax_t(1) << 32) + 4);  // a hole of NULs
  std::string progress = captureStdout([&] {
    fsStrSort(input.c_str(), output.c_str(), (dir.path() + "/").c_str(), 16, 1, 0);
  });
  EXPECT_NE(progress.find("with 4294967300 bytes, 16 bytes at a time"), std::string::npos) << progress;
  EXPECT_EQ(readText(output), "a\nb\n");
}
#endif

TEST(SortTool, ArgumentsStreamsAndLibraryTexts) {
  TempDir dir, work;
  writeFile(dir.file("in.txt"), "b\na\nb\n");
  auto counted = expectTool({"sort", "in.txt", "out.txt", "--count"}, 0, "", dir.path());
  EXPECT_EQ(counted.out, "");
  EXPECT_EQ(counted.err, "Sorting file in.txt with 6 bytes, in memory 6\nIndexing 3 records of 6 bytes ...\n"
                         "Sorting 3 records ...\nWriting output file out.txt ...\n2 records written\n");
  EXPECT_EQ(readText(dir.file("out.txt")), "a 1\nb 2\n");
  expectTool({"sort", "in.txt", "sorted.txt", "--buffer", "2", "--prefix", "w_"}, 0, "", dir.path());
  EXPECT_EQ(readText(dir.file("sorted.txt")), "a\nb\nb\n");
  for (std::vector<std::string> wrong : {std::vector<std::string>{"sort", "in.txt"},
                                         {"sort", "in.txt", "out", "--buffer", "x"},
                                         {"sort", "in.txt", "out", "--prefix", "../x"}})
    expectTool(wrong, 2);
  // Standard input and output go through copies in the work directory, gone after.
  auto both = expectTool({"sort", "-", "-", "--temporary-directory", work.path()}, 0, "b\nc\na\n");
  EXPECT_EQ(both.out, "a\nb\nc\n");
  EXPECT_TRUE(std::filesystem::is_empty(work.path()));
}

// The library removes files named like its work files under its prefix: the tool gives it a
// directory of its own, so no file of the user's (input and output included) is among them.
TEST(SortTool, RemovesNothingItDidNotCreate) {
  TempDir dir, work;
  const std::string lines = "d\nb\na\nc\n";
  for (int n : {0, 3, 5, 19}) writeFile(dir.file("sort_" + std::to_string(n) + ".tmp"), lines);
  expectTool({"sort", "sort_0.tmp", "sort_3.tmp", "--buffer", "4"}, 0, "", dir.path());
  EXPECT_EQ(readText(dir.file("sort_3.tmp")), "a\nb\nc\nd\n");
  for (int n : {0, 5, 19}) EXPECT_EQ(readFile(dir.file("sort_" + std::to_string(n) + ".tmp")), lines);
  // The work files are made where asked, and the work directory goes too.
  std::vector<std::string> args = {"sort", "sort_0.tmp", "out.txt", "--buffer", "4",
                                   "--temporary-directory", work.path()};
  auto result = expectTool(args, 0, "", dir.path());
  EXPECT_NE(result.err.find("Writing output file " + work.path()), std::string::npos) << result.err;
  EXPECT_TRUE(std::filesystem::is_empty(work.path()));
}

// Failures give the system's reason; a sort that could not write every line
// fails and leaves the old output as it was, or writes nothing to stdout.
TEST(SortTool, FailuresKeepTheOldOutputAndGiveTheReason) {
  TempDir dir;
  writeFile(dir.file("in.txt"), "b\na\nlong line\nc\nd\ne\n");
  writeFile(dir.file("out.txt"), "precious\n");
  struct Case {
    std::vector<std::string> args;
    std::string input, err;  // err: the whole text when it ends the line, else a part of it
  };
  const Case cases[] = {
      {{"sort", "in.txt", "out.txt", "--buffer", "4"}, "",
       "fskit sort: stopped early, out.txt left as it was: "
       "a line longer than the sort buffer (4 bytes) at byte "},
      {{"sort", "-", "-", "--buffer", "4"}, "a\nlonger line\n",
       "fskit sort: stopped early, nothing written: "},
      {{"sort", "absent.txt", "out.txt"}, "",
       "fskit sort: cannot open input file absent.txt: No such file or directory\n"},
      {{"sort", ".", "out.txt"}, "", "fskit sort: cannot open input file .: Is a directory\n"},
      {{"sort", "in.txt", "out.txt", "--temporary-directory", "absent"}, "",
       "fskit sort: cannot make a work directory in absent"},
  };
  for (const Case &c : cases) {
    auto result = expectTool(c.args, 1, c.input, dir.path());
    EXPECT_EQ(result.out, "");
    if (c.err.ends_with('\n')) {
      EXPECT_EQ(result.err, c.err);
    } else {
      EXPECT_NE(result.err.find(c.err), std::string::npos) << result.err;
    }
    EXPECT_EQ(readFile(dir.file("out.txt")), "precious\n");
  }
  // Nothing of the sorts is left beside the input and the output.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);
}
