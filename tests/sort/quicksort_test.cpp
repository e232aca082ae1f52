// SPDX-License-Identifier: MIT
// fsQsort: the order it gives equal keys, and inputs that would need a deep stack.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
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

}  // namespace

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
