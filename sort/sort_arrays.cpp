// SPDX-License-Identifier: MIT
// fsSortArrays: parallel arrays sorted by the first. The order is worked out
// once on the key array; then every array's elements move along the cycles of
// that permutation, so each element is moved once and no copy of a whole
// array is needed.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>

#include <fskit/sort.h>

#include "sort/sorting.h"

namespace {

constexpr long kMaxArrays = 50;

struct Array {
  long size;
  unsigned char *elements;
};

void outOfMemory() { std::fprintf(stderr, "fsSortArrays: out of memory\n"); }

// Moves every array's elements so that old position k lands at rank[k].
// `index` marks the positions already filled with -1; `slots` has room for
// two elements of every array: the one being carried and the one it displaces.
void moveAlongCycles(const Array *arrays, long m, long n, int32_t *index,
                     const int32_t *rank, unsigned char *slots, size_t slotBytes) {
  unsigned char *carried = slots, *displaced = slots + slotBytes;
  auto each = [&](auto step) {
    size_t at = 0;
    for (long a = 0; a < m; ++a) {
      if (arrays[a].size < 1) continue;
      step(arrays[a].elements, size_t(arrays[a].size), at);
      at += size_t(arrays[a].size);
    }
  };
  for (long start = 0; start < n; ++start) {
    if (index[start] == -1) continue;
    each([&](unsigned char *elements, size_t size, size_t at) {
      std::memcpy(carried + at, elements + size_t(start) * size, size);
    });
    for (long to = rank[start]; index[to] != -1; to = rank[to]) {
      each([&](unsigned char *elements, size_t size, size_t at) {
        unsigned char *element = elements + size_t(to) * size;
        std::memcpy(displaced + at, element, size);
        std::memcpy(element, carried + at, size);
        std::memcpy(carried + at, displaced + at, size);
      });
      index[to] = -1;
    }
  }
}

}  // namespace

using namespace fskit::sort;

extern "C" {

FSKIT_API void fsSortArrays(int type, long n, long m, ...) {
  if (m > kMaxArrays) {
    std::fprintf(stderr, "fsSortArrays: too many arrays (%ld) to sort\n", m);
    return;
  }
  if (!validType(type)) {
    std::fprintf(stderr, "fsSortArrays: invalid sort type, constant value %d\n", type);
    return;
  }
  Array arrays[kMaxArrays];
  size_t slotBytes = 0;
  va_list pairs;
  va_start(pairs, m);
  for (long a = 0; a < m; ++a) {
    arrays[a].size = va_arg(pairs, long);
    arrays[a].elements = static_cast<unsigned char *>(va_arg(pairs, void *));
    if (arrays[a].size > 0) slotBytes += size_t(arrays[a].size);
  }
  va_end(pairs);
  if (m < 1) return;
  const Array &keys = arrays[0];
  SortContext &context = sortContext();
  context.data = keys.elements;
  context.size = keys.size;
  // A negative count asks for more index entries than memory holds, as does
  // one beyond the reach of 32-bit element numbers.
  if (n < 0 || n > 0x7fffffffL) return outOfMemory();
  if (n < 2 || keys.size < 1 || keys.size < keySize(type)) return;

  auto *index = static_cast<int32_t *>(std::malloc(size_t(n) * sizeof(int32_t)));
  if (index == nullptr) return outOfMemory();
  std::iota(index, index + n, 0);
  long stride = keyKind(type) <= KeyKind::Uint8 ? 1 : keys.size;
  KeyLayout layout{keys.elements, stride, 0, keys.size};
  if (!sortIndexByKey(type, layout, index, size_t(n)))
    std::qsort(index, size_t(n), sizeof(int32_t), comparator(type, kIndexed));

  auto *rank = static_cast<int32_t *>(std::malloc(size_t(n) * sizeof(int32_t)));
  auto *slots = static_cast<unsigned char *>(std::malloc(2 * slotBytes));
  if (rank == nullptr || slots == nullptr) {
    std::free(index);
    std::free(rank);
    std::free(slots);
    return outOfMemory();
  }
  for (long k = 0; k < n; ++k) rank[index[k]] = int32_t(k);
  moveAlongCycles(arrays, m, n, index, rank, slots, slotBytes);
  std::free(slots);
  std::free(rank);
  std::free(index);
}

}  // extern "C"
