// SPDX-License-Identifier: MIT
// The label index that makes lookups independent of the table's size.
#include <cstring>

#include "chemistry/chemistry.h"

namespace fskit::chemistry {
namespace {

constexpr size_t kLabelSize = sizeof(FsElementRecord::label);

// The label's bytes in a 64-bit number, zero-padded. Texts contain no NUL, so
// two texts of at most 8 bytes are equal exactly when their keys are.
uint64_t packLabel(const char *text, size_t length) {
  uint64_t key = 0;
  std::memcpy(&key, text, length);
  return key;
}

size_t slotOf(uint64_t key, size_t slots) {
  return size_t((key * 0x9E3779B97F4A7C15ull) >> 32) & (slots - 1);
}

}  // namespace

void LabelIndex::clear() { std::memset(slots_, 0, sizeof slots_); }

void LabelIndex::build(const FsElementRecord *records, int32_t count) {
  clear();
  for (int32_t i = 0; i < count; ++i) {
    uint64_t key = packLabel(records[i].label, strnlen(records[i].label, kLabelSize));
    size_t slot = slotOf(key, kSlots);
    while (slots_[slot].record != 0 && slots_[slot].key != key) slot = (slot + 1) & (kSlots - 1);
    if (slots_[slot].record == 0) slots_[slot] = {key, i + 1};
  }
}

int32_t LabelIndex::find(const char *name) const {
  size_t length = strnlen(name, kLabelSize + 1);
  if (length > kLabelSize) return -1;  // longer than any label
  uint64_t key = packLabel(name, length);
  for (size_t slot = slotOf(key, kSlots); slots_[slot].record != 0;
       slot = (slot + 1) & (kSlots - 1))
    if (slots_[slot].key == key) return slots_[slot].record - 1;
  return -1;
}

}  // namespace fskit::chemistry
