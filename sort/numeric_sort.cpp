// SPDX-License-Identifier: MIT
// Numeric keys: turned into unsigned integers whose plain order is the key
// order and sorted by radix, which beats any comparison sort on such keys and
// is stable, so equal keys keep their order.
#include <cmath>
#include <cstdlib>
#include <algorithm>
#include <array>
#include <utility>
#include <type_traits>

#include "sort/sorting.h"

namespace fskit::sort {
namespace {
template <class T> struct OrderedOf {
  using type = std::make_unsigned_t<std::conditional_t<sizeof(T) == 8, int64_t, T>>;
};
template <> struct OrderedOf<float> { using type = uint32_t; };
template <> struct OrderedOf<double> { using type = uint64_t; };
template <class T> using Ordered = typename OrderedOf<T>::type;

// Signed: flip the sign bit. Floats: negative numbers have all bits flipped,
// the others the sign bit; -0 counts as +0 and every NaN as the largest value
// (the comparators order them the same way).
template <class T, bool Descending> inline Ordered<T> orderedKey(T value) {
  using U = Ordered<T>;
  U bits;
  if constexpr (std::is_floating_point_v<T>) {
    constexpr U sign = U(1) << (8 * sizeof(U) - 1);
    if (std::isnan(value)) {
      bits = U(~U(0));
    } else {
      if (value == 0) value = 0;
      std::memcpy(&bits, &value, sizeof bits);
      bits = (bits & sign) ? U(~bits) : U(bits | sign);
    }
  } else if constexpr (std::is_signed_v<T>) {
    bits = U(U(value) ^ (U(1) << (8 * sizeof(U) - 1)));
  } else {
    bits = value;
  }
  return Descending ? U(~bits) : bits;
}

// Stable least-significant-digit radix sort by key(item), a byte at a time;
// digits that are equal in every item are skipped. The result ends in `items`.
template <class Item, class KeyFn>
void radixSort(Item *items, Item *scratch, size_t n, KeyFn key) {
  using U = decltype(key(*items));
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
    size_t sum = 0;
    for (size_t &c : counts[d]) {
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

inline constexpr size_t kShortRun = 48;

template <KeyKind Kind, bool Descending>
bool sortIndexOfKind(const KeyLayout &layout, int32_t *index, size_t n) {
  using T = KeyType<Kind>;
  struct Entry {
    Ordered<T> key;
    int32_t element;
  };
  bool shortRun = n <= kShortRun;
  Entry *entries = static_cast<Entry *>(std::malloc((shortRun ? 1 : 2) * n * sizeof(Entry)));
  if (entries == nullptr) return false;
  const unsigned char *keys = layout.data + layout.offset;
  for (size_t i = 0; i < n; ++i) {
    int32_t element = index[i];
    entries[i] = {orderedKey<T, Descending>(loadKey<T>(keys + long(element) * layout.stride)),
                  element};
  }
  if (shortRun)
    insertionSort(entries, n, [](const Entry &a, const Entry &b) { return a.key < b.key; });
  else
    radixSort(entries, entries + n, n, [](const Entry &e) { return e.key; });
  for (size_t i = 0; i < n; ++i) index[i] = entries[i].element;
  std::free(entries);
  return true;
}

// A bare key moved as bytes: callers' arrays need not be aligned.
template <size_t Size> struct Element {
  unsigned char bytes[Size];
};

template <KeyKind Kind, bool Descending> void sortBareOfKind(unsigned char *base, size_t n) {
  using T = KeyType<Kind>;
  using E = Element<sizeof(T)>;
  E *items = reinterpret_cast<E *>(base);
  auto key = [](const E &e) { return orderedKey<T, Descending>(loadKey<T>(e.bytes)); };
  auto less = [&key](const E &a, const E &b) { return key(a) < key(b); };
  if constexpr (sizeof(T) == 1) {
    // Equal byte keys are equal elements: counting them is sorting them.
    size_t counts[256] = {};
    unsigned char byKey[256];
    for (int value = 0; value < 256; ++value) {
      E e{{static_cast<unsigned char>(value)}};
      byKey[key(e)] = static_cast<unsigned char>(value);
    }
    for (size_t i = 0; i < n; ++i) ++counts[key(items[i])];
    for (int k = 0; k < 256; ++k) {
      std::memset(base, byKey[k], counts[k]);
      base += counts[k];
    }
  } else if (n <= kShortRun) {
    insertionSort(items, n, less);
  } else if (E *scratch = static_cast<E *>(std::malloc(n * sizeof(E)))) {
    radixSort(items, scratch, n, key);
    std::free(scratch);
  } else {
    std::sort(items, items + n, less);  // in place when memory is short
  }
}

// Records of a common size sort by radix on their own bytes, moved whole in
// each pass: cheaper than sorting element numbers and moving the records
// afterwards.
template <KeyKind Kind, bool Descending, size_t Size>
bool sortRecordsOfSize(unsigned char *base, long offset, size_t n) {
  using T = KeyType<Kind>;
  using E = Element<Size>;
  E *items = reinterpret_cast<E *>(base);
  auto key = [offset](const E &e) {
    return orderedKey<T, Descending>(loadKey<T>(e.bytes + offset));
  };
  if (n <= kShortRun) {
    insertionSort(items, n, [&key](const E &a, const E &b) { return key(a) < key(b); });
    return true;
  }
  E *scratch = static_cast<E *>(std::malloc(n * sizeof(E)));
  if (scratch == nullptr) return false;
  radixSort(items, scratch, n, key);
  std::free(scratch);
  return true;
}

template <KeyKind Kind, bool Descending>
bool sortRecordsOfKind(unsigned char *base, size_t size, long offset, size_t n) {
  switch (size) {
    case 8: return sortRecordsOfSize<Kind, Descending, 8>(base, offset, n);
    case 12: return sortRecordsOfSize<Kind, Descending, 12>(base, offset, n);
    case 16: return sortRecordsOfSize<Kind, Descending, 16>(base, offset, n);
    case 24: return sortRecordsOfSize<Kind, Descending, 24>(base, offset, n);
    case 32: return sortRecordsOfSize<Kind, Descending, 32>(base, offset, n);
    default: return false;
  }
}

struct NumericSorters {
  bool (*index)(const KeyLayout &, int32_t *, size_t);
  void (*bare)(unsigned char *, size_t);
  bool (*records)(unsigned char *, size_t, long, size_t);
};

template <size_t... I> constexpr std::array<NumericSorters, sizeof...(I)> makeSorters(
    std::index_sequence<I...>) {
  return {NumericSorters{&sortIndexOfKind<keyKind(int(I) + 1), descending(int(I) + 1)>,
                         &sortBareOfKind<keyKind(int(I) + 1), descending(int(I) + 1)>,
                         &sortRecordsOfKind<keyKind(int(I) + 1), descending(int(I) + 1)>}...};
}

constexpr auto kNumericSorters = makeSorters(std::make_index_sequence<16>());

}  // namespace

bool sortIndexNumeric(int type, const KeyLayout &layout, int32_t *index, size_t n) {
  return kNumericSorters[size_t(type - 1)].index(layout, index, n);
}

void sortBareKeys(int type, unsigned char *base, size_t n) {
  kNumericSorters[size_t(type - 1)].bare(base, n);
}

bool sortRecords(int type, unsigned char *base, size_t size, long offset, size_t n) {
  return kNumericSorters[size_t(type - 1)].records(base, size, offset, n);
}

}  // namespace fskit::sort
