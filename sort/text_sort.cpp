// SPDX-License-Identifier: MIT
// String and byte-block keys, sorted eight bytes at a time: each element
// carries the next eight bytes of its key as one integer, so most comparisons
// touch no key memory at all; only runs that tie on those bytes load the next
// eight, run by run, until the keys end.
#include <algorithm>
#include <cstdlib>
#include <new>
#include <vector>

#include "sort/sorting.h"

namespace fskit::sort {
namespace {

struct Entry {
  uint64_t cache;    // key bytes depth to depth + 7, big-endian, zero past the end
  int32_t element;
  uint32_t order;    // position before sorting: ties keep their order
};

constexpr long kAhead = 8;
constexpr size_t kRadixRun = 1024;

struct Range {
  size_t begin, end;
  long depth;
};

template <bool Bytes> uint64_t keyBytes(const unsigned char *key, long depth, long length) {
  uint64_t cache = 0;
  long end = std::min(length, depth + 8);
  int shift = 56;
  for (long i = depth; i < end; ++i, shift -= 8) {
    if (!Bytes && key[i] == 0) break;  // never read past a text's end
    cache |= uint64_t(key[i]) << shift;
  }
  return cache;
}

template <bool Bytes> bool keyEnds(uint64_t cache, long depth, long length) {
  if (depth >= length - 8) return true;
  return !Bytes && (cache & 0xff) == 0;
}

// Orders entries by cache, then by position. Large runs are first spread
// into buckets by one byte of the cache in place (American flag sort), which
// beats comparing; the comparison sort puts each bucket in its final order.
template <bool Descending> void sortByCache(Entry *first, Entry *last, int shift) {
  size_t n = size_t(last - first);
  if (n < kRadixRun || shift < 0) {
    std::sort(first, last, [](const Entry &a, const Entry &b) {
      if (a.cache != b.cache) return Descending ? a.cache > b.cache : a.cache < b.cache;
      return a.order < b.order;
    });
    return;
  }
  auto bucket = [shift](const Entry &e) {
    unsigned byte = unsigned(e.cache >> shift) & 0xff;
    return Descending ? 255 - byte : byte;
  };
  size_t next[256] = {}, end[256];
  for (Entry *e = first; e != last; ++e) ++next[bucket(*e)];
  size_t sum = 0;
  for (int b = 0; b < 256; ++b) {
    size_t size = next[b];
    next[b] = sum;
    end[b] = sum += size;
  }
  for (unsigned b = 0; b < 256; ++b) {
    while (next[b] < end[b]) {
      Entry carried = first[next[b]];
      for (unsigned home = bucket(carried); home != b; home = bucket(carried))
        std::swap(carried, first[next[home]++]);
      first[next[b]++] = carried;
    }
  }
  size_t begin = 0;
  for (size_t bucketEnd : end) {
    if (bucketEnd - begin > 1) sortByCache<Descending>(first + begin, first + bucketEnd, shift - 8);
    begin = bucketEnd;
  }
}

template <bool Bytes, bool Descending>
void sortEntries(Entry *entries, size_t n, const KeyLayout &layout) {
  std::vector<Range> pending{{0, n, 0}};
  const unsigned char *keys = layout.data + layout.offset;
  while (!pending.empty()) {
    Range range = pending.back();
    pending.pop_back();
    Entry *first = entries + range.begin, *last = entries + range.end;
    for (Entry *e = first; e != last; ++e) {
      // Keys lie anywhere: ask for a later one now, so the misses overlap.
      if (last - e > kAhead)
        __builtin_prefetch(keys + long(e[kAhead].element) * layout.stride + range.depth);
      e->cache = keyBytes<Bytes>(keys + long(e->element) * layout.stride, range.depth,
                                 layout.length);
    }
    sortByCache<Descending>(first, last, 56);
    for (Entry *run = first; run != last;) {
      Entry *next = run + 1;
      while (next != last && next->cache == run->cache) ++next;
      if (next - run > 1 && !keyEnds<Bytes>(run->cache, range.depth, layout.length))
        pending.push_back({size_t(run - entries), size_t(next - entries), range.depth + 8});
      run = next;
    }
  }
}

}  // namespace

bool sortIndexText(int type, const KeyLayout &layout, int32_t *index, size_t n) {
  Entry *entries = static_cast<Entry *>(std::malloc(n * sizeof(Entry)));
  if (entries == nullptr) return false;
  for (size_t i = 0; i < n; ++i) entries[i] = {0, index[i], uint32_t(i)};
  bool sorted = true;
  try {
    bool bytes = keyKind(type) == KeyKind::Bytes;
    if (bytes)
      descending(type) ? sortEntries<true, true>(entries, n, layout)
                       : sortEntries<true, false>(entries, n, layout);
    else
      descending(type) ? sortEntries<false, true>(entries, n, layout)
                       : sortEntries<false, false>(entries, n, layout);
  } catch (const std::bad_alloc &) {
    sorted = false;
  }
  if (sorted)
    for (size_t i = 0; i < n; ++i) index[i] = entries[i].element;
  std::free(entries);
  return sorted;
}

}  // namespace fskit::sort
