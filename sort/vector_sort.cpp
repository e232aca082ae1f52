// SPDX-License-Identifier: MIT
// Long runs of 32- and 64-bit numeric keys sorted by Highway's vectorised
// quicksort (vqsort), which outruns the radix sorts on them where the
// processor has wide vectors. Its order is made to follow the library's
// rules: NaNs are moved out before a float sort, and index sorts sort keys
// made into ordered unsigned integers (ordered_keys.h: NaNs largest, -0 as
// +0) packed with a tie-breaker, so equal keys keep their order as the radix
// sort keeps it.
#include <hwy/contrib/sort/vqsort.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "sort/large_memory.h"
#include "sort/ordered_keys.h"
#include "sort/sorting.h"

namespace fskit::sort {
namespace {

// The signed integer of a float's width: its order is the order of the
// floats without a sign bit, and the reverse for those with one.
template <class F> using SameWidthInt = std::conditional_t<sizeof(F) == 4, int32_t, int64_t>;

// Floats sorted as the signed integers of their bits, which vqsort sorts
// faster than floats and without the care NaNs need: ascending, that leaves
// [sign set: -0 ... -inf, -NaNs][no sign: +0 ... +inf, +NaNs]; descending
// the mirror image. The numbers with the sign set are then reversed and their
// NaNs moved past the other end, which makes the float order with NaNs after
// the numbers (before them, descending); -0 and +0 end up side by side.
template <class F, class Direction> void sortFloats(unsigned char *base, size_t n, Direction direction) {
  using I = SameWidthInt<F>;
  I *bits = reinterpret_cast<I *>(base);
  hwy::Sorter()(bits, n, direction);
  constexpr I minusInfinity = std::numeric_limits<I>::min() | std::bit_cast<I>(F(INFINITY));
  I *end = bits + n;
  if (direction.IsAscending()) {
    I *positive = std::lower_bound(bits, end, I(0));
    I *nans = std::lower_bound(bits, positive, I(minusInfinity + 1));
    std::reverse(bits, nans);
    std::rotate(nans, positive, end);  // nothing moves without negative NaNs
  } else {
    // Descending: [no sign][sign set: -NaNs, -inf ... -0]; the integers fall.
    I *negative = std::partition_point(bits, end, [](I b) { return b >= 0; });
    I *numbers = std::partition_point(negative, end, [](I b) { return b > minusInfinity; });
    std::reverse(numbers, end);
    std::rotate(bits, negative, numbers);
  }
}

template <class T, class Direction> void sortBareAs(unsigned char *base, size_t n, Direction direction) {
  if constexpr (std::is_floating_point_v<T>) sortFloats<T>(base, n, direction);
  else hwy::Sorter()(reinterpret_cast<T *>(base), n, direction);
}

template <class T> void sortBare(int type, unsigned char *base, size_t n) {
  if (descending(type)) sortBareAs<T>(base, n, hwy::SortDescending());
  else sortBareAs<T>(base, n, hwy::SortAscending());
}

// An index sort's entries: the ordered key with a tie-breaker, the element
// number, which breaks ties as the positions do while the index rises
// strictly (an identity index, say); otherwise the position, whose element
// number is looked up in a copy of the index. Keys of up to 32 bits pack
// into one 64-bit number, key above, which then orders as (key, tie);
// 64-bit keys make Highway's (key, value) pairs.
template <class Key> using IndexEntry = std::conditional_t<sizeof(Key) <= 4, uint64_t, hwy::K64V64>;

inline void setEntry(uint64_t &entry, uint64_t key, uint64_t tie) { entry = key << 32 | tie; }
inline void setEntry(hwy::K64V64 &entry, uint64_t key, uint64_t tie) {
  entry.key = key;
  entry.value = tie;
}
inline uint64_t keyOf(uint64_t entry) { return entry >> 32; }
inline uint64_t keyOf(const hwy::K64V64 &entry) { return entry.key; }
inline uint64_t tieOf(uint64_t entry) { return uint32_t(entry); }
inline uint64_t tieOf(const hwy::K64V64 &entry) { return entry.value; }

template <class Keys>
bool sortIndexVector(Keys keys, const KeyLayout &layout, int32_t *index, size_t n) {
  using E = IndexEntry<typename Keys::Key>;
  E *entries = allocateLarge<E>(n);
  if (entries == nullptr) return false;
  const unsigned char *at = layout.data + layout.offset;
  bool rising = true;
  for (size_t i = 0; i < n; ++i) {
    int32_t element = index[i];
    rising &= i == 0 || element > index[i - 1];
    setEntry(entries[i], uint64_t(orderedKey(keys, at + long(element) * layout.stride)), uint32_t(element));
  }
  int32_t *original = nullptr;
  if (!rising) {
    original = static_cast<int32_t *>(std::malloc(n * sizeof(int32_t)));
    if (original == nullptr) {
      std::free(entries);
      return false;
    }
    std::memcpy(original, index, n * sizeof(int32_t));
    for (size_t i = 0; i < n; ++i) setEntry(entries[i], keyOf(entries[i]), i);
  }
  hwy::Sorter()(entries, n, hwy::SortAscending());
  for (size_t start = 0; start < n;) {
    size_t end = start + 1;
    if constexpr (!std::is_same_v<E, uint64_t>) {
      // Pairs order by key alone: put each run of equal keys in tie order.
      while (end < n && entries[end].key == entries[start].key) ++end;
      if (end - start > 1)
        std::sort(entries + start, entries + end, [](const E &a, const E &b) { return a.value < b.value; });
    }
    for (; start < end; ++start) {
      uint64_t tie = tieOf(entries[start]);
      index[start] = rising ? int32_t(uint32_t(tie)) : original[tie];
    }
  }
  std::free(original);
  std::free(entries);
  return true;
}

}  // namespace

bool vectorSortBare(int type, unsigned char *base, size_t n) {
  if (sortContext().ownSortsOnly || n < kVectorRun) return false;
  if (reinterpret_cast<uintptr_t>(base) % size_t(keySize(type)) != 0) return false;
  switch (keyKind(type)) {
    case KeyKind::Int32: sortBare<int32_t>(type, base, n); return true;
    case KeyKind::Uint32: sortBare<uint32_t>(type, base, n); return true;
    case KeyKind::Float: sortBare<float>(type, base, n); return true;
    case KeyKind::Double: sortBare<double>(type, base, n); return true;
    default: return false;
  }
}

bool vectorSortIndex(int type, const KeyLayout &layout, int32_t *index, size_t n) {
  if (sortContext().ownSortsOnly || n < kVectorRun) return false;
  return withOrderedKeys(type, [&](auto keys) {
    if constexpr (sizeof(typename decltype(keys)::Key) < 4) return false;
    else return sortIndexVector(keys, layout, index, n);
  });
}

}  // namespace fskit::sort
