// SPDX-License-Identifier: MIT
// Sort workloads: typed sorts, the comparators qsort calls, fsQsort, and file sorts with their
// work files side by side; then two file sorts given one prefix.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "sort/sorting.h"
#include "tests/support/test_support.h"
#include "tests/threads/stress.h"

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

namespace {

using Bytes = std::vector<unsigned char>;

// A short text for the bytes of the sorted results.
template <class... Vectors>
std::string hashOf(const Vectors &...vectors) {
  std::string bytes;
  (bytes.append(reinterpret_cast<const char *>(vectors.data()), vectors.size() * sizeof vectors[0]),
   ...);
  return std::to_string(std::hash<std::string>{}(bytes));
}

std::mt19937 randomFor(int worker, int round) { return std::mt19937(unsigned(worker * 7919 + round)); }

// `n` records of `size` random bytes, with a text key of up to 9 letters at `textAt` unless
// that is negative.
Bytes records(std::mt19937 &random, int n, int size, int textAt = -1) {
  Bytes data(size_t(n) * size_t(size));
  for (unsigned char &byte : data) byte = static_cast<unsigned char>(random());
  if (textAt >= 0)
    for (int k = 0; k < n; ++k) {
      unsigned char *text = &data[size_t(k) * size_t(size) + size_t(textAt)];
      int length = int(random() % 10);
      for (int i = 0; i < length; ++i) text[i] = static_cast<unsigned char>('a' + random() % 4);
      text[length] = 0;
    }
  return data;
}

std::vector<int32_t> firstNumbers(int n) {
  std::vector<int32_t> index(static_cast<size_t>(n));
  std::iota(index.begin(), index.end(), 0);
  return index;
}

std::string typedRound(int worker, int round) {
  std::mt19937 random = randomFor(worker, round);
  std::string out;
  for (int n : {30, 700 + 50 * worker}) {
    Bytes wide = records(random, n, 12);  // radix on the records
    fsSort(FS_SORT_LONG_DESC, 4, 12, n, wide.data());
    std::vector<double> doubles(static_cast<size_t>(n));
    for (double &value : doubles) value = double(int(random() % 2000) - 1000) / 8;
    fsSort(FS_SORT_DOUBLE, 0, 8, n, doubles.data());
    Bytes texts = records(random, n, 13, 2);  // moved through an order
    fsSort(FS_SORT_STRING, 2, 13, n, texts.data());
    Bytes shorts = records(random, n, 6);
    std::vector<int32_t> byShort = firstNumbers(n), byText = firstNumbers(n);
    fsSortIndex(FS_SORT_USHORT, 2, 6, n, shorts.data(), byShort.data());
    fsSortIndex(FS_SORT_STRING_DESC, 2, 13, n, texts.data(), byText.data());
    std::vector<float> keys(static_cast<size_t>(n));
    for (float &key : keys) key = float(random() % 100);
    std::vector<int64_t> payload(static_cast<size_t>(n));
    std::iota(payload.begin(), payload.end(), int64_t(worker) << 32);
    fsSortArrays(FS_SORT_FLOAT_DESC, n, 2, 4L, keys.data(), 8L, payload.data());
    out += hashOf(wide, doubles, texts, byShort, byText, keys, payload) + " ";
  }
  return out;
}

// The comparators read the calling thread's sort context: another thread's sizes and offsets
// would give another order. fsQsort with a comparator of the caller's beside them.
std::string comparatorRound(int worker, int round) {
  using namespace fskit::sort;
  std::mt19937 random = randomFor(worker, round);
  const int size = 14 + worker, offset = 1 + round % 4, n = 400;
  Bytes texts = records(random, n, size, offset);
  sortContext() = {offset, nullptr, size};
  std::qsort(texts.data(), n, size_t(size), comparator(FS_SORT_STRING_DESC, kElementField));
  Bytes numbers = records(random, n, size);
  std::vector<int32_t> index = firstNumbers(n);
  sortContext() = {offset, numbers.data(), size};
  std::qsort(index.data(), n, sizeof(int32_t), comparator(FS_SORT_SHORT, kIndexedField));
  std::vector<std::array<int32_t, 2>> pairs(static_cast<size_t>(500 + 40 * round));
  for (size_t k = 0; k < pairs.size(); ++k) pairs[k] = {int32_t(random() % 64), int32_t(k)};
  fsQsort(pairs.data(), uint32_t(pairs.size()), sizeof pairs[0], [](const void *a, const void *b) {
    int32_t x = *static_cast<const int32_t *>(a), y = *static_cast<const int32_t *>(b);
    return x < y ? -1 : x > y;  // by the first number only
  });
  return hashOf(texts, index, pairs);
}

// Every worker sorts its own file with its own prefix, in the one directory: ten chunks, or
// thirty (two merge passes).
std::string fileRound(int worker, int round) {
  std::mt19937 random = randomFor(worker, round);
  const std::string dir = fskit::stress::scratchDir(), name = "w" + std::to_string(worker);
  const std::string input = dir + "/" + name + ".in", output = dir + "/" + name + ".out";
  std::string text;
  for (int k = 0; k < 1500; ++k) text += std::to_string(random() % 5000) + "\n";
  fskit::test::writeFile(input, text);
  long chunks = round % 2 == 0 ? 10 : 30;
  long result = fsStrSort(input.c_str(), output.c_str(), (dir + "/" + name + "_").c_str(),
                          long(text.size()) / chunks, 0, uint8_t(round % 3 == 0));
  int left = 0;
  for (const auto &entry : std::filesystem::directory_iterator(dir))
    left += entry.path().filename().string().rfind(name + "_sort_", 0) == 0;
  return std::to_string(result) + " " + hashOf(fskit::test::readFile(output)) + " left " +
         std::to_string(left);
}

const fskit::stress::Registration typed{{"sort-typed", 40, typedRound}};
const fskit::stress::Registration comparators{{"sort-comparators", 60, comparatorRound}};
const fskit::stress::Registration files{{"sort-files", 6, fileRound}};

}  // namespace

// The first sort is held in its merge by its output, a named pipe larger than a pipe holds and
// read only after the second sort has tried the same prefix.
TEST(SortThreads, SamePrefixFailsWhileAnotherSortUsesIt) {
#if defined(_WIN32)
  GTEST_SKIP() << "needs a named pipe";
#else
  fskit::test::TempDir dir;
  const std::string input = dir.file("in.txt"), pipe = dir.file("out.pipe"),
                    other = dir.file("other.txt"), prefix = dir.path() + "/w_";
  std::mt19937 random(5);
  std::vector<std::string> lines(120000);
  std::string text;
  for (std::string &line : lines) text += (line = std::to_string(random())) + "\n";
  std::sort(lines.begin(), lines.end());
  std::string expected;
  for (const std::string &line : lines) expected += line + "\n";
  fskit::test::writeFile(input, text);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const long buffer = long(text.size()) / 4;
  auto sort = [&](const std::string &output) {
    return fsStrSort(input.c_str(), output.c_str(), prefix.c_str(), buffer, 1, 0);
  };

  long first = -1, second = -1;
  std::thread sorter([&] { first = sort(pipe); });
  std::ifstream merged(pipe, std::ios::binary);  // open once the merge has opened its output
  ASSERT_TRUE(merged.is_open());
  std::string printed = fskit::test::captureStdout([&] { second = sort(other); });
  EXPECT_EQ(second, 0);
  EXPECT_EQ(printed, "Work files " + prefix + "sort_*.tmp are in use by another sort\n");
  EXPECT_FALSE(std::filesystem::exists(other));
  EXPECT_TRUE(std::filesystem::exists(prefix + "sort_0.tmp"));  // the first's, untouched

  std::ostringstream output;
  output << merged.rdbuf();
  sorter.join();
  EXPECT_EQ(first, long(lines.size()));
  EXPECT_TRUE(output.str() == expected);
  EXPECT_FALSE(std::filesystem::exists(prefix + "sort_0.tmp"));
  // Finished, the first gives the prefix up.
  fskit::test::captureStdout([&] { EXPECT_EQ(sort(other), long(lines.size())); });
  EXPECT_TRUE(fskit::test::readFile(other) == expected);
#endif
}
