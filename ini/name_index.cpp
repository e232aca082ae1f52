// SPDX-License-Identifier: MIT
// The first-match name index behind the lookups of lines and paragraphs.
#include <cstring>

#include "ini/storage.h"

namespace fskit::ini {

namespace {

// Up to this many slots a plain scan is as quick as hashing.
constexpr int32_t kScanLimit = 16;

uint32_t hashOf(const char *name) {
  uint32_t hash = 2166136261u;  // FNV-1a
  for (const unsigned char *p = reinterpret_cast<const unsigned char *>(name); *p != 0; ++p)
    hash = (hash ^ *p) * 16777619u;
  return hash;
}

bool sameName(const char *a, const char *b) { return a != nullptr && std::strcmp(a, b) == 0; }

}  // namespace

void NameIndex::reset() {
  std::free(entries_);
  entries_ = nullptr;
  capacity_ = used_ = 0;
  indexed_.store(0, std::memory_order_relaxed);
}

int32_t NameIndex::find(const char *name, const void *items, int32_t count, NameAt nameAt) {
  if (name == nullptr) return -1;
  if (count > kScanLimit &&
      (indexed_.load(std::memory_order_acquire) == count || catchUp(items, count, nameAt))) {
    uint32_t position;
    return probe(name, hashOf(name), items, nameAt, position);
  }
  for (int32_t slot = 0; slot < count; ++slot)
    if (sameName(nameAt(items, slot), name)) return slot;
  return -1;
}

// The slot of `name` in the table, or -1 with `position` at the empty entry
// where it belongs.
int32_t NameIndex::probe(const char *name, uint32_t hash, const void *items, NameAt nameAt,
                         uint32_t &position) const {
  for (position = hash & (capacity_ - 1);; position = (position + 1) & (capacity_ - 1)) {
    const Entry &entry = entries_[position];
    if (entry.slot < 0) return -1;
    if (entry.hash == hash && sameName(nameAt(items, entry.slot), name)) return entry.slot;
  }
}

// False when the table cannot cover the list now: no memory, or another
// lookup is catching it up.
bool NameIndex::catchUp(const void *items, int32_t count, NameAt nameAt) {
  if (catchingUp_.exchange(true, std::memory_order_acquire)) return false;
  int32_t indexed = indexed_.load(std::memory_order_relaxed);
  if (indexed > count) {  // the list was emptied and filled again
    reset();
    indexed = 0;
  }
  for (; indexed < count; ++indexed) {
    const char *name = nameAt(items, indexed);
    if (name == nullptr) continue;
    if (!reserve(used_ + 1)) break;
    uint32_t hash = hashOf(name), position;
    if (probe(name, hash, items, nameAt, position) >= 0) continue;  // the first one stays
    entries_[position] = Entry{hash, indexed};
    ++used_;
  }
  indexed_.store(indexed, std::memory_order_release);
  catchingUp_.store(false, std::memory_order_release);
  return indexed == count;
}

bool NameIndex::reserve(uint32_t wanted) {
  if (wanted * 2 <= capacity_) return true;
  uint32_t capacity = capacity_ == 0 ? 64 : capacity_ * 2;
  if (capacity < capacity_) return false;
  void *block = std::malloc(sizeof(Entry) * capacity);
  if (block == nullptr) return false;
  Entry *entries = static_cast<Entry *>(block);
  for (uint32_t i = 0; i < capacity; ++i) entries[i].slot = -1;
  for (uint32_t i = 0; i < capacity_; ++i) {
    if (entries_[i].slot < 0) continue;
    uint32_t position = entries_[i].hash & (capacity - 1);
    while (entries[position].slot >= 0) position = (position + 1) & (capacity - 1);
    entries[position] = entries_[i];
  }
  std::free(entries_);
  entries_ = entries;
  capacity_ = capacity;
  return true;
}

}  // namespace fskit::ini
