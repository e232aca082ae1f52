// SPDX-License-Identifier: MIT
// Working memory of the numeric sorts. On Linux a large block asks for huge
// pages: with 4 KiB pages, faulting in a fresh block of tens of megabytes
// took about as long as vqsort's sort of it, or two radix passes.
#pragma once

#include <cstddef>
#include <cstdlib>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace fskit::sort {

// Room for n items of T, aligned for T; null without memory. Freed with
// std::free.
template <class T> T *allocateLarge(size_t n) {
  size_t bytes = n * sizeof(T);
#if defined(__linux__)
  constexpr size_t kHugePage = size_t(1) << 21;
  if (bytes < 2 * kHugePage) {
    bytes = (bytes + alignof(T) - 1) / alignof(T) * alignof(T);
    return static_cast<T *>(std::aligned_alloc(alignof(T), bytes != 0 ? bytes : alignof(T)));
  }
  bytes = (bytes + kHugePage - 1) & ~(kHugePage - 1);
  void *block = std::aligned_alloc(kHugePage, bytes);
#ifdef MADV_HUGEPAGE
  if (block != nullptr) madvise(block, bytes, MADV_HUGEPAGE);  // a hint; failure is harmless
#endif
  return static_cast<T *>(block);
#else
  static_assert(alignof(T) <= alignof(std::max_align_t));
  return static_cast<T *>(std::malloc(bytes));
#endif
}

}  // namespace fskit::sort
