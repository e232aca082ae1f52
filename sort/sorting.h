// SPDX-License-Identifier: MIT
// Internals shared by the sort family: sort types, the comparator table and
// the sort context, the key-ordered sorts behind fsSort and fsSortIndex, and
// the work files of the file sort.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace fskit::sort {

// What a key is, by sort type: the types come in pairs, ascending then
// descending, in the order of the kinds below.
enum class KeyKind { Int8, Uint8, Int16, Uint16, Int32, Uint32, Float, Double, String, Bytes };

constexpr bool validType(int type) { return type >= 1 && type <= 20; }
constexpr KeyKind keyKind(int type) { return KeyKind((type - 1) / 2); }
constexpr bool descending(int type) { return type % 2 == 0; }
constexpr bool numeric(int type) { return keyKind(type) < KeyKind::String; }
// Bytes a numeric key occupies; string and byte keys take at least one.
constexpr long keySize(int type) {
  constexpr long sizes[] = {1, 1, 2, 2, 4, 4, 4, 8, 1, 1};
  return sizes[int(keyKind(type))];
}

// The C type of a numeric key kind.
template <KeyKind K> struct KeyTypeOf;
template <> struct KeyTypeOf<KeyKind::Int8> { using type = int8_t; };
template <> struct KeyTypeOf<KeyKind::Uint8> { using type = uint8_t; };
template <> struct KeyTypeOf<KeyKind::Int16> { using type = int16_t; };
template <> struct KeyTypeOf<KeyKind::Uint16> { using type = uint16_t; };
template <> struct KeyTypeOf<KeyKind::Int32> { using type = int32_t; };
template <> struct KeyTypeOf<KeyKind::Uint32> { using type = uint32_t; };
template <> struct KeyTypeOf<KeyKind::Float> { using type = float; };
template <> struct KeyTypeOf<KeyKind::Double> { using type = double; };
template <KeyKind K> using KeyType = typename KeyTypeOf<K>::type;

// Keys are read byte-wise: callers' elements need not be aligned.
template <class T> inline T loadKey(const unsigned char *p) {
  T value;
  std::memcpy(&value, p, sizeof value);
  return value;
}

// The comparators read the key offset, the data of an index sort and the
// element size from here, because qsort hands them only two pointers. Each
// thread has its own, which every sorting call on it sets as it needs;
// nothing is reset afterwards.
struct SortContext {
  long offset = 0;
  const unsigned char *data = nullptr;
  long size = 0;
  // Set by tests: the radix sorts even where vqsort would take over.
  bool ownSortsOnly = false;
};
SortContext &sortContext();  // the calling thread's

using Comparator = int (*)(const void *, const void *);
enum ComparatorVariant { kElement, kElementField, kIndexed, kIndexedField };
// One of the 80 comparators: four per sort type, in the order of the variants.
Comparator comparator(int type, ComparatorVariant variant);

// Where the keys of an index sort lie: element k's key starts at
// data + k * stride + offset. `length` bounds string keys (they also end at
// their NUL) and is the length of byte keys. Memory up to `readable`, when
// given, may be read past the end of a string key.
struct KeyLayout {
  const unsigned char *data;
  long stride;
  long offset;
  long length;
  const unsigned char *readable = nullptr;
};
inline constexpr long kUnbounded = LONG_MAX;

// Put the element numbers in `index` into key order, equal keys keeping their
// order. False, with the index untouched, when working memory is not to be had.
bool sortIndexByKey(int type, const KeyLayout &layout, int32_t *index, size_t n);
bool sortIndexNumeric(int type, const KeyLayout &layout, int32_t *index, size_t n);
bool sortIndexText(int type, const KeyLayout &layout, int32_t *index, size_t n);

// Sorts n numeric keys stored alone (element size = key size) in place.
void sortBareKeys(int type, unsigned char *base, size_t n);
// Sorts n records of 8, 12, 16, 24 or 32 bytes by the numeric key at
// `offset`; false for other sizes or without working memory.
bool sortRecords(int type, unsigned char *base, size_t size, long offset, size_t n);

// Highway's vqsort for runs of at least kVectorRun 32- or 64-bit keys, where
// the build has it (FSKIT_VQSORT): bare keys in place, and index sorts with
// the same result as sortIndexNumeric. False when not taken (too short,
// other key types, unaligned bare keys, no memory for an index sort, no
// vqsort, or sortContext().ownSortsOnly).
inline constexpr size_t kVectorRun = 4096;
#if FSKIT_VQSORT
bool vectorSortBare(int type, unsigned char *base, size_t n);
bool vectorSortIndex(int type, const KeyLayout &layout, int32_t *index, size_t n);
#else
inline bool vectorSortBare(int, unsigned char *, size_t) { return false; }
inline bool vectorSortIndex(int, const KeyLayout &, int32_t *, size_t) { return false; }
#endif

// Moves elements so that position k receives the element at order[k].
// Overwrites `order`; `spare` holds one element.
void permuteElements(unsigned char *base, size_t size, int32_t *order, size_t n,
                     unsigned char *spare);

// The work files of one file sort: the files it has open (work files and
// the output) and its prefix and count of names in use, which the clean-up
// needs. At most kMergeWidth work files are merged at once. Every sort in
// progress is known to the library, so that no two share a prefix and the
// unload removes the files of a sort that never finished.
inline constexpr int kMergeWidth = 20;
inline constexpr int kWorkSlots = kMergeWidth + 1;
class WorkFiles {
 public:
  WorkFiles() = default;
  ~WorkFiles();  // finish(), if started
  WorkFiles(const WorkFiles &) = delete;
  WorkFiles &operator=(const WorkFiles &) = delete;

  enum class Start { kReady, kNoMemory, kInUse };
  // Takes a copy of `prefix` and enters the sorts in progress, unless one of
  // them has the same prefix; then removes old work files of the prefix and
  // registers the clean-up for unload.
  Start start(const char *prefix);
  // Closes every open file and removes the work files "<prefix>sort_<n>.tmp"
  // for n from 0 to 19 and every further number in use.
  void cleanUp();
  // cleanUp(), and the sort is no longer in progress.
  void finish();

  const char *prefix() const { return prefix_ != nullptr ? prefix_ : ""; }
  // The name of work file `number`; null without memory (free it with free()).
  char *name(long number) const;
  // Names up to `count` - 1 are in use.
  void useNames(long count) { namesUsed_ = count; }
  // Opens a file and keeps it in a free slot; null when it cannot be opened.
  std::FILE *open(const char *name, const char *mode);
  // Closes a file opened by open(); false when a write failed on the way.
  bool close(std::FILE *file);

 private:
  static int cleanUpAtUnload();

  std::FILE *slots_[kWorkSlots] = {};
  char *prefix_ = nullptr;
  long namesUsed_ = 0;
  // Membership of the sorts in progress.
  bool started_ = false;
  unsigned long ticket_ = 0;
  WorkFiles *previous_ = nullptr, *next_ = nullptr;
};

// Lines written through a large buffer of our own; the first failed write
// is remembered and ends the writing.
class LineWriter {
 public:
  explicit LineWriter(std::FILE *file);  // may throw std::bad_alloc
  ~LineWriter();
  LineWriter(const LineWriter &) = delete;
  LineWriter &operator=(const LineWriter &) = delete;
  void line(const char *text, size_t length);
  void countedLine(const char *text, size_t length, long count);  // "text count"
  bool finish();  // writes what is buffered; false if any write failed

 private:
  void put(const char *bytes, size_t length);
  std::FILE *file_;
  char *buffer_;
  size_t used_ = 0;
  bool failed_ = false;
};

// Merges the sorted work files `numbers` of `files` into `out`, taking the smallest
// line of all, compared byte by byte with its newline (and its count, if it
// has one), from the lowest-numbered file on a tie. Returns the lines
// written; -1 when a write failed, -2 when work file `*unreadable` could not
// be read. With `collapse`, equal lines are written once. May throw bad_alloc.
long mergeWorkFiles(WorkFiles &files, const long *numbers, int count, std::FILE *out,
                    bool collapse, long *unreadable);

}  // namespace fskit::sort
