// SPDX-License-Identifier: MIT
// fsTblParseMF: a formula reduced to its distinct symbols, masses and
// ring-plus-double-bond value, and written back in element-table order.
#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>
#include <new>

#include <fskit/frame.h>

#include "chemistry/chemistry.h"
#include "platform/ascii.h"

namespace fskit::chemistry {
namespace {

struct Entry {
  char symbol[FormulaToken::kSymbolSize];
  int32_t record;  // index in the element table
  int32_t count;
};

// Room for the distinct symbols: on the stack for the usual 100, on the heap
// for a caller who asks for more (or 100 when that memory is not there).
class Entries {
 public:
  explicit Entries(int32_t wanted) {
    if (wanted > kDefaultTokens) heap_.reset(new (std::nothrow) Entry[size_t(wanted)]);
    data_ = heap_ ? heap_.get() : local_;
    capacity_ = heap_ ? wanted : std::min(wanted, kDefaultTokens);
  }
  Entry &operator[](int32_t i) { return data_[i]; }
  int32_t capacity() const { return capacity_; }

 private:
  Entry local_[kDefaultTokens];
  std::unique_ptr<Entry[]> heap_;
  Entry *data_;
  int32_t capacity_;
};

int32_t saturatedSum(int32_t a, int32_t b) {
  int64_t sum = int64_t(a) + b;
  return sum > INT32_MAX ? INT32_MAX : int32_t(sum);
}

// The canonical text: entries by table position, "." before an isotope label
// (or before every entry but the first with `dotAll`), counts above 1.
void writeCanonical(char *text, Entries &entries, int32_t stored, bool dotAll) {
  int32_t order[kDefaultTokens];
  std::unique_ptr<int32_t[]> heapOrder;
  int32_t *sorted = order;
  if (stored > kDefaultTokens) {
    heapOrder.reset(new (std::nothrow) int32_t[size_t(stored)]);
    if (!heapOrder) return;
    sorted = heapOrder.get();
  }
  for (int32_t i = 0; i < stored; ++i) sorted[i] = i;
  std::sort(sorted, sorted + stored,
            [&](int32_t a, int32_t b) { return entries[a].record < entries[b].record; });
  char *end = text;
  for (int32_t i = 0; i < stored; ++i) {
    const Entry &entry = entries[sorted[i]];
    if (end != text && (dotAll || ascii::isDigit(entry.symbol[0]))) *end++ = '.';
    size_t length = std::strlen(entry.symbol);
    std::memcpy(end, entry.symbol, length);
    end += length;
    if (entry.count > 1) end = std::to_chars(end, end + 11, entry.count).ptr;
  }
  *end = '\0';
}

}  // namespace
}  // namespace fskit::chemistry

using namespace fskit::chemistry;

extern "C" FSKIT_API int32_t fsTblParseMF(const char *formula, int32_t separated,
                                          int32_t dotAll, char *text, int32_t *nominalMass,
                                          double *monoMass, double *averageMass, double *rdb,
                                          int32_t maxTokens, char symbols[][10],
                                          int32_t *counts, int32_t *atomicNumbers,
                                          int32_t *isotopeShifts) {
  if (text != nullptr) text[0] = '\0';
  if (nominalMass != nullptr) *nominalMass = 0;
  if (monoMass != nullptr) *monoMass = 0.0;
  if (averageMass != nullptr) *averageMass = 0.0;
  if (rdb != nullptr) *rdb = 1.0;
  if (formula == nullptr || formula[0] == '\0') return 0;
  // Blanks are read as "."; either one switches separated mode on.
  bool separatedMode = separated != 0 || std::strpbrk(formula, ". ") != nullptr;

  Entries entries(tokenLimit(maxTokens));
  // One table for the whole call, even while another thread loads a new one.
  TableReader reader;
  int32_t stored = 0;
  size_t position = 0;
  while (formula[position] != '\0' && stored < entries.capacity()) {
    FormulaToken token;
    position = scanFormulaToken(formula, position, separatedMode, true, token);
    if (token.length == 0) continue;
    int32_t record = findLabel(reader, token.symbol);
    if (record < 0) return refusedAt(position);
    // Equal labels find the same record, so the record tells repeats apart.
    int32_t i = 0;
    while (i < stored && entries[i].record != record) ++i;
    if (i < stored) {
      entries[i].count = saturatedSum(entries[i].count, token.lowCount);
    } else {
      std::memcpy(entries[i].symbol, token.symbol, sizeof token.symbol);
      entries[i].record = record;
      entries[i].count = token.lowCount;
      if (symbols != nullptr) std::memcpy(symbols[i], token.symbol, sizeof token.symbol);
      ++stored;
    }
    if (counts != nullptr) counts[i] = entries[i].count;
  }

  // Every entry's record was found above in the table the reader still holds.
  const FsElementRecord *records = reader.table().records;
  int64_t nominal = 0;
  double mono = 0.0, average = 0.0, ringsAndBonds = 1.0;
  for (int32_t i = 0; i < stored; ++i) {
    const FsElementRecord &element = records[entries[i].record];
    if (atomicNumbers != nullptr) atomicNumbers[i] = element.atomicNumber;
    if (isotopeShifts != nullptr) isotopeShifts[i] = element.isotopeShift;
    int64_t count = entries[i].count;
    nominal += count * element.nominalMass;
    average += double(count) * element.averageMass;
    mono += double(count) * element.monoMass;
    ringsAndBonds += double(count * element.rdbFactor) * 0.5;
  }
  if (nominalMass != nullptr)
    *nominalMass = int32_t(std::clamp<int64_t>(nominal, INT32_MIN, INT32_MAX));
  if (monoMass != nullptr) *monoMass = mono;
  if (averageMass != nullptr) *averageMass = average;
  if (rdb != nullptr) *rdb = ringsAndBonds;
  if (stored > 0 && text != nullptr) writeCanonical(text, entries, stored, dotAll != 0);
  return stored;
}
