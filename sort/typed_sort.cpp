// SPDX-License-Identifier: MIT
// fsSort and fsSortIndex. Both set the sort context as the comparators expect
// it, then sort with code that knows the key's type (no call per comparison);
// the comparators and the C library's qsort remain the way out when working
// memory cannot be had.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <type_traits>

#include <fskit/sort.h>

#include "sort/sorting.h"

namespace fskit::sort {
namespace {

// One element moved; a constant Size makes it a plain load and store.
template <size_t Size> void moveElement(unsigned char *to, const unsigned char *from, size_t size) {
  std::memcpy(to, from, Size != 0 ? Size : size);
}

template <size_t Size>
void permuteBySize(unsigned char *base, size_t size, int32_t *order, size_t n,
                   unsigned char *spare) {
  const size_t width = Size != 0 ? Size : size;
  // Follow each cycle of the permutation once, marking a filled position by
  // making it name itself.
  for (size_t start = 0; start < n; ++start) {
    if (size_t(order[start]) == start) continue;
    moveElement<Size>(spare, base + start * width, width);
    for (size_t to = start;;) {
      size_t from = size_t(order[to]);
      order[to] = int32_t(to);
      if (from == start) {
        moveElement<Size>(base + to * width, spare, width);
        break;
      }
      moveElement<Size>(base + to * width, base + from * width, width);
      to = from;
    }
  }
}

// Calls body with the element size as a constant for the common sizes (the
// moves then compile to plain loads and stores), with 0 for the others.
template <class Body> void withElementSize(size_t size, Body body) {
  switch (size) {
    case 2: return body(std::integral_constant<size_t, 2>());
    case 4: return body(std::integral_constant<size_t, 4>());
    case 8: return body(std::integral_constant<size_t, 8>());
    case 12: return body(std::integral_constant<size_t, 12>());
    case 16: return body(std::integral_constant<size_t, 16>());
    case 24: return body(std::integral_constant<size_t, 24>());
    case 32: return body(std::integral_constant<size_t, 32>());
    default: return body(std::integral_constant<size_t, 0>());
  }
}

// Copies element order[k] of `from` to position k of `to`.
template <size_t Size>
void gatherBySize(unsigned char *to, const unsigned char *from, size_t size,
                  const int32_t *order, size_t n) {
  const size_t width = Size != 0 ? Size : size;
  for (size_t k = 0; k < n; ++k)
    moveElement<Size>(to + k * width, from + size_t(order[k]) * width, width);
}

}  // namespace

bool sortIndexByKey(int type, const KeyLayout &layout, int32_t *index, size_t n) {
  return numeric(type) ? sortIndexNumeric(type, layout, index, n)
                       : sortIndexText(type, layout, index, n);
}

void permuteElements(unsigned char *base, size_t size, int32_t *order, size_t n,
                     unsigned char *spare) {
  withElementSize(size, [&](auto fixed) { permuteBySize<fixed()>(base, size, order, n, spare); });
}

}  // namespace fskit::sort

using namespace fskit::sort;

extern "C" {

FSKIT_API void fsSort(int type, int offset, int size, int n, void *base) {
  if (!validType(type)) {
    std::fprintf(stderr, "fsSort: invalid sort type, constant value %d\n", type);
    return;
  }
  SortContext &context = sortContext();
  bool field = offset >= 1;
  if (field) context.offset = offset;
  context.size = size;
  long keyOffset = field ? offset : 0;
  if (n < 2 || size < 1 || base == nullptr || keyOffset + keySize(type) > size) return;
  auto *elements = static_cast<unsigned char *>(base);
  if (numeric(type) && keyOffset == 0 && size == keySize(type)) {
    sortBareKeys(type, elements, size_t(n));
    return;
  }
  if (numeric(type) && sortRecords(type, elements, size_t(size), keyOffset, size_t(n))) return;
  // Sort the element numbers by key, then move the elements: gathered into a
  // copy when there is room for one (the reads are independent, so the
  // memory system overlaps them), else along the permutation's cycles.
  KeyLayout layout{elements, size, keyOffset, size - keyOffset};
  auto *order = static_cast<int32_t *>(std::malloc(size_t(n) * sizeof(int32_t)));
  bool sorted = false;
  if (order != nullptr) {
    std::iota(order, order + n, 0);
    sorted = sortIndexByKey(type, layout, order, size_t(n));
  }
  if (sorted) {
    if (auto *copy = static_cast<unsigned char *>(std::malloc(size_t(n) * size_t(size)))) {
      withElementSize(size_t(size), [&](auto fixed) {
        gatherBySize<fixed()>(copy, elements, size_t(size), order, size_t(n));
      });
      std::memcpy(elements, copy, size_t(n) * size_t(size));
      std::free(copy);
    } else if (auto *spare = static_cast<unsigned char *>(std::malloc(size_t(size)))) {
      permuteElements(elements, size_t(size), order, size_t(n), spare);
      std::free(spare);
    } else {
      sorted = false;
    }
  }
  std::free(order);
  if (!sorted) std::qsort(base, size_t(n), size_t(size), comparator(type, field ? kElementField : kElement));
}

FSKIT_API void fsSortIndex(int type, int offset, int size, int n, const void *data,
                           int32_t *index) {
  if (!validType(type)) {
    std::fprintf(stderr, "fsSortIndex: invalid sort type, constant value %d\n", type);
    return;
  }
  SortContext &context = sortContext();
  bool field = offset >= 1;
  context.size = size;
  if (field) context.offset = offset;
  context.data = static_cast<const unsigned char *>(data);
  if (n < 2 || data == nullptr || index == nullptr) return;
  long keyOffset = field ? offset : 0;
  long length = keyKind(type) == KeyKind::String ? kUnbounded
                : size - keyOffset > 1         ? size - keyOffset
                                               : 1;
  long stride = keyKind(type) <= KeyKind::Uint8 ? 1 : size;
  KeyLayout layout{context.data, stride, keyOffset, length};
  if (!sortIndexByKey(type, layout, index, size_t(n)))
    std::qsort(index, size_t(n), sizeof(int32_t), comparator(type, field ? kIndexedField : kIndexed));
}

}  // extern "C"
