// SPDX-License-Identifier: MIT
// fsQsort: the library's quicksort for callers with their own comparison.
// The pivot is whatever occupies the last slot of a range, compared in place,
// so the order it leaves equal keys in is fixed by the partition steps below.
// Each partition touches only its own range, so the two parts may be sorted
// in either order: the smaller one is sorted by recursion and the larger one
// by looping, which keeps the stack at O(log n) even on sorted input.
#include <cstdint>
#include <cstring>

#include <fskit/sort.h>

namespace {

using Compare = int (*)(const void *, const void *);

template <size_t Size> class Quicksort {
 public:
  Quicksort(unsigned char *base, size_t size, Compare compare)
      : base_(base), size_(Size != 0 ? Size : size), compare_(compare) {}

  void sort(int64_t lo, int64_t hi) {
    while (hi > lo) {
      // The partition steps leave a strictly ascending range as it is.
      if (ascending(lo, hi)) return;
      int64_t i = partition(lo, hi);
      if (i - lo < hi - i) {
        sort(lo, i - 1);
        lo = i + 1;
      } else {
        sort(i + 1, hi);
        hi = i - 1;
      }
    }
  }

 private:
  unsigned char *at(int64_t k) const { return base_ + size_t(k) * size_; }
  int compare(int64_t a, int64_t b) const { return compare_(at(a), at(b)); }

  bool ascending(int64_t lo, int64_t hi) const {
    for (int64_t k = lo; k < hi; ++k)
      if (compare(k, k + 1) >= 0) return false;
    return true;
  }

  void exchange(int64_t a, int64_t b) const {
    if (a == b) return;
    unsigned char *x = at(a), *y = at(b);
    unsigned char spare[Size != 0 ? Size : 64];
    for (size_t done = 0; done < size_; done += sizeof spare) {
      size_t chunk = size_ - done < sizeof spare ? size_ - done : sizeof spare;
      std::memcpy(spare, x + done, Size != 0 ? Size : chunk);
      std::memcpy(x + done, y + done, Size != 0 ? Size : chunk);
      std::memcpy(y + done, spare, Size != 0 ? Size : chunk);
    }
  }

  // Partitions lo..hi around the element in slot hi and returns where that
  // slot's final content went. A swap that moves another element into slot
  // hi makes it the pivot. The bounds on i and j only matter to comparison
  // functions that call an element smaller than itself.
  int64_t partition(int64_t lo, int64_t hi) const {
    int64_t i = lo - 1, j = hi + 1;
    for (;;) {
      ++i;
      while (compare(i, hi) < 0 && i < j && i < hi) ++i;
      --j;
      bool crossed = false;
      while (compare(j, hi) > 0) {
        if (j <= i) {
          crossed = true;
          break;
        }
        --j;
      }
      if (crossed || i >= j) break;
      exchange(i, j);
    }
    exchange(i, hi);
    return i;
  }

  unsigned char *base_;
  size_t size_;
  Compare compare_;
};

template <size_t Size> void quicksort(void *base, uint32_t n, uint32_t size, Compare compare) {
  Quicksort<Size>(static_cast<unsigned char *>(base), size, compare).sort(0, int64_t(n) - 1);
}

}  // namespace

extern "C" {

FSKIT_API void fsQsort(void *base, uint32_t n, uint32_t size,
                       int (*compare)(const void *, const void *)) {
  if (n < 2 || size == 0 || base == nullptr || compare == nullptr) return;
  switch (size) {
    case 4: return quicksort<4>(base, n, size, compare);
    case 8: return quicksort<8>(base, n, size, compare);
    case 16: return quicksort<16>(base, n, size, compare);
    default: return quicksort<0>(base, n, size, compare);
  }
}

}  // extern "C"
