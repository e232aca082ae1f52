// SPDX-License-Identifier: MIT
// The table of 80 comparators with the qsort signature, four per sort type:
// on elements, on a field of the elements, and the two on element numbers of
// an index sort. They take what qsort cannot pass them from the calling
// thread's sort context, read once per comparison.
#include <array>
#include <cmath>
#include <utility>

#include "sort/sorting.h"

namespace fskit::sort {
namespace {

template <class T> int compareNumbers(T a, T b) {
  if constexpr (sizeof(T) < sizeof(int) && !std::is_floating_point_v<T>) {
    return int(a) - int(b);
  } else {
    // NaNs are greater than every number and equal to each other, so that a
    // sort always sees a consistent order.
    if constexpr (std::is_floating_point_v<T>) {
      if (std::isnan(a) || std::isnan(b)) return int(std::isnan(a)) - int(std::isnan(b));
    }
    return a > b ? 1 : a < b ? -1 : 0;
  }
}

// A string key ends at its NUL or after `limit` bytes.
int compareStrings(const unsigned char *a, const unsigned char *b, long limit) {
  for (long i = 0; i < limit; ++i) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    if (a[i] == 0) return 0;
  }
  return 0;
}

int compareBytes(const unsigned char *a, const unsigned char *b, long length) {
  for (long i = 0; i < length; ++i)
    if (a[i] != b[i]) return int(a[i]) - int(b[i]);
  return 0;
}

template <int Type, int Variant>
const unsigned char *keyAddress(const SortContext &context, const void *p) {
  const unsigned char *key = static_cast<const unsigned char *>(p);
  if constexpr (Variant == kIndexed || Variant == kIndexedField) {
    // The 8-bit types address their keys by byte, whatever the element size.
    long stride = keyKind(Type) <= KeyKind::Uint8 ? 1 : context.size;
    key = context.data + long(loadKey<int32_t>(key)) * stride;
  }
  if constexpr (Variant == kElementField || Variant == kIndexedField) key += context.offset;
  return key;
}

template <int Type, int Variant> int compareKeys(const void *first, const void *second) {
  const SortContext &context = sortContext();
  const unsigned char *a = keyAddress<Type, Variant>(context, first);
  const unsigned char *b = keyAddress<Type, Variant>(context, second);
  if constexpr (descending(Type)) std::swap(a, b);
  constexpr bool withOffset = Variant == kElementField || Variant == kIndexedField;
  long rest = context.size - (withOffset ? context.offset : 0);
  if constexpr (keyKind(Type) == KeyKind::String) {
    // Within an element the key cannot go past the element's end; an index
    // sort's data may hold texts longer than the stride.
    bool inElement = Variant == kElement || Variant == kElementField;
    return compareStrings(a, b, inElement ? rest : kUnbounded);
  } else if constexpr (keyKind(Type) == KeyKind::Bytes) {
    return compareBytes(a, b, rest > 1 ? rest : 1);
  } else {
    using T = KeyType<keyKind(Type)>;
    return compareNumbers(loadKey<T>(a), loadKey<T>(b));
  }
}

template <size_t... I> constexpr std::array<Comparator, sizeof...(I)> makeTable(
    std::index_sequence<I...>) {
  return {&compareKeys<int(I / 4) + 1, int(I % 4)>...};
}

constexpr auto kComparators = makeTable(std::make_index_sequence<80>());

}  // namespace

Comparator comparator(int type, ComparatorVariant variant) {
  return kComparators[size_t(4 * (type - 1) + variant)];
}

}  // namespace fskit::sort
