// SPDX-License-Identifier: MIT
// fsQsort: the order it gives equal keys, against a plain recursive
// transcription of its partition steps (3000 arrays with many ties), and
// inputs that would need a deep stack.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

namespace {

// Elements "1a": the digit is the key, the letter tells equal keys apart.
int byDigit(const void *a, const void *b) {
  return *static_cast<const char *>(a) - *static_cast<const char *>(b);
}

int byInt(const void *a, const void *b) {
  int x = *static_cast<const int *>(a), y = *static_cast<const int *>(b);
  return x < y ? -1 : x > y;
}

// The partition steps as written, recursing into the left part first.
void referenceSort(char *base, long lo, long hi, int (*compare)(const void *, const void *)) {
  while (hi > lo) {
    auto at = [&](long k) { return base + 2 * k; };
    auto exchange = [&](long x, long y) { std::swap_ranges(at(x), at(x) + 2, at(y)); };
    long i = lo - 1, j = hi + 1;
    for (;;) {
      ++i;
      while (compare(at(i), at(hi)) < 0 && i < j) ++i;
      --j;
      bool finished = false;
      while (compare(at(j), at(hi)) > 0) {
        if (j <= i) { finished = true; break; }
        --j;
      }
      if (finished || i >= j) break;
      exchange(i, j);
    }
    exchange(i, hi);
    referenceSort(base, lo, i - 1, compare);
    lo = i + 1;
  }
}

}  // namespace

TEST(Quicksort, MatchesThePartitionStepsOnRandomSmallArrays) {
  std::mt19937 random(11);
  for (int round = 0; round < 3000; ++round) {
    int n = int(random() % 40);
    std::string elements;
    for (int k = 0; k < n; ++k) {
      elements += char('0' + random() % (round % 7 + 1));
      elements += char('a' + k % 26);
    }
    std::string expected = elements;
    referenceSort(expected.data(), 0, n - 1, byDigit);
    fsQsort(elements.data(), uint32_t(n), 2, byDigit);
    ASSERT_EQ(elements, expected);
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
