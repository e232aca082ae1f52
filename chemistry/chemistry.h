// SPDX-License-Identifier: MIT
// Internals of the chemistry family: the process-wide element table with its
// label index, the element-file reader and the formula token scanner.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <atomic>

#include <fskit/chemistry.h>

#include "platform/locks.h"

namespace fskit::chemistry {

// Records per table: one block of this many is allocated for each load, and
// a file that fills it leaves a table whose count is -1.
inline constexpr int32_t kCapacity = 500;

// Element files tried, in this order, after the one an INI file names.
inline constexpr const char *kDefaultFiles[] = {"kw_elements.tbl", "kw_ele.tbl",
                                                "QUOR_SYSTEM:KW_ELEMENTS.TBL"};

// Finds records by label in constant time. A label (at most 8 bytes) is
// packed into a 64-bit key, zero-padded, so that equal keys mean equal texts;
// collisions are resolved by linear probing. Each key keeps the first record
// that carries it, which is the one a search in file order would find.
class LabelIndex {
 public:
  void build(const FsElementRecord *records, int32_t count);
  void clear();
  // Index of the first record labelled `name`, or -1.
  int32_t find(const char *name) const;

 private:
  static constexpr size_t kSlots = 1024;  // a power of two, twice the capacity
  struct Slot {
    uint64_t key;
    int32_t record;  // record index + 1; 0 marks a free slot
  };
  Slot slots_[kSlots] = {};
};

// An element table as readers see it. A table is never changed once
// published, and never freed while the library is loaded: a call on another
// thread may still be reading it after a newer one has taken its place. So
// readers take no lock; loading the same contents again reuses the table
// kept for them, so that reloads do not add up.
struct TableSnapshot {
  bool present = false;
  FsElementRecord *records = nullptr;  // kCapacity records, malloc'ed
  int32_t count = 0;                   // -1 when the file filled the block
  int32_t filled = 0;                  // records read, also when count is -1
  LabelIndex index;
  TableSnapshot *older = nullptr;      // the list of every table kept
};

// The table readers see; null: no table present. Readers only load it.
inline constinit std::atomic<const TableSnapshot *> currentTable{nullptr};

// The loaders' state. Loads and releases hold `loading`.
struct ElementTable {
  platform::Mutex loading;
  TableSnapshot *kept = nullptr;   // every table made, newest first
  char *configuredName = nullptr;  // the INI file's choice; malloc'ed
  char *recordedName = nullptr;    // lower-cased, from fsLoadElemTable; malloc'ed
};

ElementTable &elementTable();

// No table is present afterwards. `loading` held.
void releaseTable();

// Makes the `filled` records read into `records` (from allocateRecords) the
// present table, or the kept table with the same contents (then `records`
// is freed). False without memory: `records` freed, no table present.
// `loading` held.
bool installTable(FsElementRecord *records, int32_t count, int32_t filled);

// What loading a table has to report. Reports are made once `loading` is
// let go, so that a message function may load a table itself.
struct LoadReport {
  int32_t result = 1;               // fsInitElemTable's result
  const char *routine = nullptr;    // null: nothing to report
  int32_t code = 0;
  const char *text = nullptr;       // with one %s for `name`
  const char *name = nullptr;
  void send() const;
};

// fsInitElemTable with `loading` held.
LoadReport initTable(int32_t iniHandle, int32_t load);

// The table one call reads: the first use picks the table present then, and
// the call keeps it to its end, whatever other threads load meanwhile.
class TableReader {
 public:
  // The table; loads one first (fsInitElemTable(ini::kFirstHandle, 1)) when
  // none is present and `loadIfMissing`. Without a table: one whose `present`
  // is false.
  const TableSnapshot &table(bool loadIfMissing = false) {
    if (table_ == nullptr) table_ = currentTable.load(std::memory_order_acquire);
    return table_ != nullptr ? *table_ : missing(loadIfMissing);
  }

 private:
  const TableSnapshot &missing(bool loadIfMissing);
  const TableSnapshot *table_ = nullptr;
};

// Reads an element file into `records` (room for kCapacity). The number of
// records read, or -1 when they reached kCapacity; `filled` receives the
// number of records read in either case.
int32_t readElementFile(std::FILE *file, FsElementRecord *records, int32_t &filled);

// fsFindElemInTbl: loads a table when none is present, reports an empty one
// (the report releases `reader`).
int32_t findLabel(TableReader &reader, const char *name);

// One token of a formula as scanFormulaToken() delivers it.
struct FormulaToken {
  static constexpr int32_t kSymbolSize = 10;  // 9 characters and a NUL
  char symbol[kSymbolSize];  // the first 9 characters of the symbol
  int32_t length;            // the symbol's full length (0: no symbol)
  int32_t lowCount;
  int32_t highCount;
  bool exclamation;  // "!" before the symbol
  bool star;         // "*" right after its letters
};

// Reads the token that starts at formula[position] and returns the position
// where the next one starts. `blanksAsDots` reads every blank as "." (the
// merging parser does this instead of copying the formula).
size_t scanFormulaToken(const char *formula, size_t position, bool separated,
                        bool blanksAsDots, FormulaToken &token);

// Parsers refuse a symbol with minus the characters consumed so far.
inline int32_t refusedAt(size_t consumed) {
  return consumed > size_t(INT32_MAX) ? -INT32_MAX : -int32_t(consumed);
}

// `maxTokens` 0 (or less) stands for the parsers' default of 100 entries.
inline constexpr int32_t kDefaultTokens = 100;
inline int32_t tokenLimit(int32_t maxTokens) {
  return maxTokens > 0 ? maxTokens : kDefaultTokens;
}

}  // namespace fskit::chemistry
