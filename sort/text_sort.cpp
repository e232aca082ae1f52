// SPDX-License-Identifier: MIT
// String and byte-block keys, sorted eight bytes at a time: each element
// carries the next eight bytes of its key as one integer, so most comparisons
// touch no key memory at all; only runs that tie on those bytes load more,
// run by run, until the keys end. A run whose keys share a longer prefix
// (log lines: a timestamp, a host, a message) skips it at once: the pass that
// loads the eight bytes also measures what every key shares with the first.
#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
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
constexpr size_t kRadixRun = 128;

struct Range {
  size_t begin, end;
  long depth;
};

// Words are read only on little-endian machines, where the first byte of a
// key is the lowest of the word; elsewhere byte by byte.
constexpr bool kWords = std::endian::native == std::endian::little;
constexpr uint64_t kOnes = 0x0101010101010101u, kHighs = 0x8080808080808080u;

uint64_t loadWord(const unsigned char *p) {
  uint64_t word;
  std::memcpy(&word, p, sizeof word);
  return word;
}
// Flags the zero bytes of a word: the lowest flag is exact, flags above it
// may be false.
uint64_t zeroBytes(uint64_t word) { return (word - kOnes) & ~word & kHighs; }

// Can the eight bytes of a key at `depth` be read as one word? Byte keys up
// to their length; texts only where the caller says memory is readable,
// since they may end anywhere.
template <bool Bytes>
bool wordFits(const unsigned char *key, long depth, const KeyLayout &layout) {
  if (!kWords || depth > layout.length - 8) return false;
  return Bytes || (layout.readable != nullptr && layout.readable - (key + depth) >= 8);
}

template <bool Bytes>
uint64_t keyBytes(const unsigned char *key, long depth, const KeyLayout &layout) {
  if (wordFits<Bytes>(key, depth, layout)) {
    uint64_t word = loadWord(key + depth);
    if (uint64_t zeros = Bytes ? 0 : zeroBytes(word)) word &= ((zeros & -zeros) >> 7) - 1;
    return __builtin_bswap64(word);
  }
  uint64_t cache = 0;
  long end = std::min(layout.length, depth + 8);
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

// What two keys share from `depth` on: the number of equal bytes, at most
// `limit`, or kIdentical when the keys end together before that.
constexpr long kIdentical = LONG_MAX;
template <bool Bytes>
long sharedBytes(const unsigned char *a, const unsigned char *b, long depth, long limit,
                 const KeyLayout &layout) {
  long rest = layout.length - depth, end = std::min(rest, limit), i = 0;
  for (; i <= end - 8 && wordFits<Bytes>(a, depth + i, layout) &&
         wordFits<Bytes>(b, depth + i, layout);
       i += 8) {
    uint64_t wordA = loadWord(a + depth + i), differ = wordA ^ loadWord(b + depth + i);
    uint64_t zeros = Bytes ? 0 : zeroBytes(wordA);
    if ((differ | zeros) == 0) continue;
    int firstDiffer = differ != 0 ? std::countr_zero(differ) / 8 : 8;
    int firstZero = zeros != 0 ? std::countr_zero(zeros) / 8 : 8;
    return firstZero < firstDiffer ? kIdentical : i + firstDiffer;
  }
  // The rest byte by byte: nothing past a text's end is read.
  for (; i < end; ++i) {
    if (a[depth + i] != b[depth + i]) return i;
    if (!Bytes && a[depth + i] == 0) return kIdentical;
  }
  return end == rest ? kIdentical : end;
}

// Loads each entry's eight bytes at `depth`. `varying` flags the bits in
// which some cache differs from the first; where none does and `measure` is
// set, `shared` tells what all the keys share from `depth` on (at least 8,
// or kIdentical).
struct Loaded {
  uint64_t varying = 0;
  long shared = kIdentical;
};
template <bool Bytes>
Loaded loadCaches(Entry *first, Entry *last, const KeyLayout &layout, long depth, bool measure) {
  const unsigned char *keys = layout.data + layout.offset;
  auto key = [&](const Entry &e) { return keys + long(e.element) * layout.stride; };
  const unsigned char *reference = key(*first);
  uint64_t referenceCache = keyBytes<Bytes>(reference, depth, layout);
  Loaded loaded;
  for (Entry *e = first; e != last; ++e) {
    // Keys lie anywhere: ask for a later one now, so the misses overlap;
    // measuring reads on past the eight bytes, so ask for the next line of
    // memory too.
    if (last - e > kAhead) {
      __builtin_prefetch(key(e[kAhead]) + depth);
      if (measure) __builtin_prefetch(key(e[kAhead]) + depth + 64);
    }
    e->cache = keyBytes<Bytes>(key(*e), depth, layout);
    loaded.varying |= e->cache ^ referenceCache;
    if (measure && loaded.varying == 0 && e != first)
      loaded.shared = std::min(
          loaded.shared, sharedBytes<Bytes>(reference, key(*e), depth, loaded.shared, layout));
  }
  return loaded;
}

// Orders entries by cache, ties in any order (runs that tie are either
// sorted further or put back into their order once their keys end). Large
// runs are first spread into buckets by one byte of the cache in place
// (American flag sort), which beats comparing; the comparison sort puts
// each bucket in its final order.
template <bool Descending>
void sortByCache(Entry *first, Entry *last, int shift, uint64_t varying) {
  // Bytes in which no cache differs need no pass.
  while (shift >= 0 && ((varying >> shift) & 0xff) == 0) shift -= 8;
  size_t n = size_t(last - first);
  if (shift < 0) return;
  if (n < kRadixRun) {
    std::sort(first, last, [](const Entry &a, const Entry &b) {
      return Descending ? a.cache > b.cache : a.cache < b.cache;
    });
    return;
  }
  auto bucket = [shift](const Entry &e) {
    unsigned byte = unsigned(e.cache >> shift) & 0xff;
    return Descending ? 255 - byte : byte;
  };
  size_t next[256] = {}, end[256];
  for (Entry *e = first; e != last; ++e) ++next[bucket(*e)];
  // A byte every entry shares moves nothing.
  if (next[bucket(*first)] == n) return sortByCache<Descending>(first, last, shift - 8, varying);
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
    if (bucketEnd - begin > 1)
      sortByCache<Descending>(first + begin, first + bucketEnd, shift - 8, varying);
    begin = bucketEnd;
  }
}

// Entries with equal keys keep their order.
void inOrder(Entry *first, Entry *last) {
  std::sort(first, last, [](const Entry &a, const Entry &b) { return a.order < b.order; });
}

template <bool Bytes, bool Descending>
void sortEntries(Entry *entries, size_t n, const KeyLayout &layout) {
  std::vector<Range> pending{{0, n, 0}};
  while (!pending.empty()) {
    Range range = pending.back();
    pending.pop_back();
    Entry *first = entries + range.begin, *last = entries + range.end;
    long depth = range.depth;
    Loaded loaded = loadCaches<Bytes>(first, last, layout, depth, true);
    if (loaded.varying == 0) {
      if (loaded.shared == kIdentical) {
        inOrder(first, last);
        continue;
      }
      // Every cache is the same: load the bytes where the keys part.
      depth += loaded.shared;
      loaded = loadCaches<Bytes>(first, last, layout, depth, false);
    }
    sortByCache<Descending>(first, last, 56, loaded.varying);
    for (Entry *run = first; run != last;) {
      Entry *next = run + 1;
      while (next != last && next->cache == run->cache) ++next;
      if (next - run > 1 && keyEnds<Bytes>(run->cache, depth, layout.length))
        inOrder(run, next);
      else if (next - run > 1)
        pending.push_back({size_t(run - entries), size_t(next - entries), depth + 8});
      run = next;
    }
  }
}

}  // namespace

bool sortIndexText(int type, const KeyLayout &layout, int32_t *index, size_t n) {
  if (n < 2) return true;  // the sort reads the first key
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
