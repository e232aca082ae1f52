// SPDX-License-Identifier: MIT
// The kernels of the numeric sorts: a stable radix sort for long runs and an
// insertion sort for short ones, both ordering items by an unsigned key.
#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

namespace fskit::sort {

inline constexpr size_t kShortRun = 48;

// Stable least-significant-digit radix sort by key(item) ^ flip, a byte at a
// time; digits that are equal in every item are skipped. The items are
// counted and moved by the digits of key(item) alone: `flip` only reorders
// the buckets, so it costs nothing per item. The result ends in `items`.
template <class Item, class KeyFn, class U>
void radixSort(Item *items, Item *scratch, size_t n, KeyFn key, U flip) {
  static_assert(std::is_same_v<decltype(key(*items)), U>);
  constexpr int kDigits = sizeof(U);
  size_t counts[kDigits][256] = {};
  for (size_t i = 0; i < n; ++i) {
    U k = key(items[i]);
    for (int d = 0; d < kDigits; ++d) ++counts[d][(k >> (8 * d)) & 0xff];
  }
  Item *from = items, *to = scratch;
  for (int d = 0; d < kDigits; ++d) {
    size_t *count = counts[d];
    if (count[(key(from[0]) >> (8 * d)) & 0xff] == n) continue;
    const unsigned bucketFlip = (flip >> (8 * d)) & 0xff;
    size_t sum = 0;
    for (unsigned ordered = 0; ordered < 256; ++ordered) {
      size_t &c = count[ordered ^ bucketFlip];
      size_t here = c;
      c = sum;
      sum += here;
    }
    for (size_t i = 0; i < n; ++i) {
      Item item = from[i];
      to[count[(key(item) >> (8 * d)) & 0xff]++] = item;
    }
    std::swap(from, to);
  }
  if (from != items) std::memcpy(static_cast<void *>(items), from, n * sizeof(Item));
}

// Stable insertion sort for short runs.
template <class Item, class Less> void insertionSort(Item *items, size_t n, Less less) {
  for (size_t i = 1; i < n; ++i) {
    Item item = items[i];
    size_t j = i;
    for (; j > 0 && less(item, items[j - 1]); --j) items[j] = items[j - 1];
    items[j] = item;
  }
}

}  // namespace fskit::sort
