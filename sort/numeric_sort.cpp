// SPDX-License-Identifier: MIT
// Numeric keys: turned into unsigned integers whose plain order is the key
// order and sorted by radix, which beats any comparison sort on such keys and
// is stable, so equal keys keep their order. The code is instantiated per key
// reader (ordered_keys.h), and keys stored alone sort as records of their own
// width, so they share the record sorts' code. Long runs of 32- and 64-bit
// keys go to vqsort first where the build has it (vector_sort.cpp).
#include <cstdlib>
#include <algorithm>
#include <type_traits>

#include "sort/large_memory.h"
#include "sort/ordered_keys.h"
#include "sort/radix_sort.h"
#include "sort/sorting.h"

namespace fskit::sort {
namespace {

// An element number with its key; the sort needs only the key's width.
template <class Key> struct Entry {
  Key key;
  int32_t element;
};

template <class Key> void sortEntries(Entry<Key> *entries, size_t n) {
  if (n <= kShortRun)
    insertionSort(entries, n, [](const Entry<Key> &a, const Entry<Key> &b) { return a.key < b.key; });
  else
    radixSort(entries, entries + n, n, [](const Entry<Key> &e) { return e.key; }, Key(0));
}

template <class Keys>
bool sortIndexBy(Keys keys, const KeyLayout &layout, int32_t *index, size_t n) {
  using E = Entry<typename Keys::Key>;
  E *entries = allocateLarge<E>((n <= kShortRun ? 1 : 2) * n);
  if (entries == nullptr) return false;
  const unsigned char *at = layout.data + layout.offset;
  for (size_t i = 0; i < n; ++i) {
    int32_t element = index[i];
    entries[i] = {orderedKey(keys, at + long(element) * layout.stride), element};
  }
  sortEntries(entries, n);
  for (size_t i = 0; i < n; ++i) index[i] = entries[i].element;
  std::free(entries);
  return true;
}

// An element moved as bytes: callers' arrays need not be aligned.
template <size_t Size> struct Element {
  unsigned char bytes[Size];
};

// Records of a common size sort by radix on their own bytes, moved whole in
// each pass: cheaper than sorting element numbers and moving the records
// afterwards. False without working memory. `offset` is a long, or a
// constant 0 for keys stored alone, which then stay in a register.
template <size_t Size, class Keys, class Offset>
bool sortRecordsOfSize(Keys keys, unsigned char *base, Offset offset, size_t n) {
  using E = Element<Size>;
  E *items = reinterpret_cast<E *>(base);
  if (n <= kShortRun) {
    insertionSort(items, n, [keys, offset](const E &a, const E &b) {
      return orderedKey(keys, a.bytes + offset) < orderedKey(keys, b.bytes + offset);
    });
    return true;
  }
  E *scratch = allocateLarge<E>(n);
  if (scratch == nullptr) return false;
  radixSort(items, scratch, n, [offset](const E &e) { return Keys::bits(e.bytes + offset); }, keys.flip);
  std::free(scratch);
  return true;
}

template <class Keys> bool sortRecordsBy(Keys keys, unsigned char *base, size_t size, long offset, size_t n) {
  switch (size) {
    case 8: return sortRecordsOfSize<8>(keys, base, offset, n);
    case 12: return sortRecordsOfSize<12>(keys, base, offset, n);
    case 16: return sortRecordsOfSize<16>(keys, base, offset, n);
    case 24: return sortRecordsOfSize<24>(keys, base, offset, n);
    case 32: return sortRecordsOfSize<32>(keys, base, offset, n);
    default: return false;
  }
}

template <class Keys> void sortBareBy(Keys keys, unsigned char *base, size_t n) {
  using Key = typename Keys::Key;
  if constexpr (sizeof(Key) == 1) {
    // Equal byte keys are equal elements: counting them is sorting them.
    size_t counts[256] = {};
    for (size_t i = 0; i < n; ++i) ++counts[Keys::bits(base + i)];
    for (unsigned ordered = 0; ordered < 256; ++ordered) {
      unsigned char byte = static_cast<unsigned char>(ordered ^ keys.flip);
      std::memset(base, byte, counts[byte]);
      base += counts[byte];
    }
  } else if (!sortRecordsOfSize<sizeof(Key)>(keys, base, std::integral_constant<long, 0>(), n)) {
    using E = Element<sizeof(Key)>;
    E *items = reinterpret_cast<E *>(base);
    // In place when memory is short.
    std::sort(items, items + n, [keys](const E &a, const E &b) {
      return orderedKey(keys, a.bytes) < orderedKey(keys, b.bytes);
    });
  }
}

}  // namespace

bool sortIndexNumeric(int type, const KeyLayout &layout, int32_t *index, size_t n) {
  if (vectorSortIndex(type, layout, index, n)) return true;
  return withOrderedKeys(type, [&](auto keys) { return sortIndexBy(keys, layout, index, n); });
}

void sortBareKeys(int type, unsigned char *base, size_t n) {
  if (vectorSortBare(type, base, n)) return;
  withOrderedKeys(type, [&](auto keys) { sortBareBy(keys, base, n); });
}

bool sortRecords(int type, unsigned char *base, size_t size, long offset, size_t n) {
  return withOrderedKeys(type, [&](auto keys) { return sortRecordsBy(keys, base, size, offset, n); });
}

}  // namespace fskit::sort
