// SPDX-License-Identifier: MIT
// Storage of the INI document: allocation, texts,
// and the growing list of slots in which paragraphs and documents keep their
// lines and paragraphs. Nothing here throws: a failed allocation gives null.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

#include "platform/platform.h"

namespace fskit::ini {

// Results of read, write and grow: 0 done (for read: go on), 1 failed (for
// read: stop here).
inline constexpr int kOk = 0;
inline constexpr int kFailed = 1;

inline void *reallocate(void *block, size_t size) { return std::realloc(block, size); }

template <class T, class... Args>
T *create(Args &&...args) {
  return new (std::nothrow) T(std::forward<Args>(args)...);
}

// How a text setter trims the text it is given.
enum class Trim {
  kNone,      // names: kept whole, line feeds included
  kTrailing,  // topics and values: trailing white space and control characters go
  kBoth,      // comments: leading white space goes too
};

// Replaces `field` by a trimmed copy of `text`; null, empty or all-trimmed
// text leaves it null. A text equal to the field changes nothing.
void setText(char *&field, const char *text, Trim trim);

// Writes `text` to `stream`; false on an output error. A stream written by
// the writer belongs to that one write, so it is not locked call by call.
inline bool put(std::FILE *stream, const char *text) { return platform::putText(text, stream) >= 0; }

// First-match lookup by name over a list that only grows at its end. Short
// lists are scanned; longer ones get a hash table that takes in the slots
// appended since the last lookup, each name keeping its first slot, so that
// reading, walking and setting stay linear in the size of the document. Each
// candidate is compared with the slot's current name, so a stale entry can
// only miss; without memory for the table, lookups fall back to the scan.
//
// Lookups may run side by side as long as nobody changes the list. The
// table is then caught up by one of them at a time, the others scanning
// meanwhile, and is used only once it covers the whole list: a lookup
// never reads the table while another changes it.
class NameIndex {
 public:
  using NameAt = const char *(*)(const void *items, int32_t slot);  // null: no name

  NameIndex() = default;
  ~NameIndex() { reset(); }
  NameIndex(const NameIndex &) = delete;
  NameIndex &operator=(const NameIndex &) = delete;

  void reset();
  // The first slot below `count` whose name equals `name`, or -1.
  int32_t find(const char *name, const void *items, int32_t count, NameAt nameAt);

 private:
  struct Entry {
    uint32_t hash;
    int32_t slot;  // -1: empty
  };
  bool catchUp(const void *items, int32_t count, NameAt nameAt);
  bool reserve(uint32_t wanted);
  int32_t probe(const char *name, uint32_t hash, const void *items, NameAt nameAt,
                uint32_t &position) const;

  Entry *entries_ = nullptr;
  uint32_t capacity_ = 0;  // a power of two, kept at least twice `used_`
  uint32_t used_ = 0;
  // Slots below this are in the table; stored once a catch-up is over, and
  // the table is read only when this equals the list's length.
  std::atomic<int32_t> indexed_{0};
  std::atomic<bool> catchingUp_{false};  // a lookup is changing the table
};

// Owned items (lines or paragraphs) in the order they were read or added.
// Slots may be null; the list grows only at its end and is emptied only whole.
template <class Item, const char *(Item::*NameOf)() const>
class SlotList {
 public:
  SlotList() = default;
  ~SlotList() { clear(); }
  SlotList(const SlotList &) = delete;
  SlotList &operator=(const SlotList &) = delete;

  int32_t count() const { return count_; }
  Item *at(int32_t index) const { return index >= 0 && index < count_ ? slots_[index] : nullptr; }

  // Adds `n` null slots at the end; kFailed (nothing changed) when `n` is
  // less than 1 or there is no memory. Capacity doubles, so appending one
  // slot at a time stays linear.
  int grow(int32_t n) {
    if (n < 1 || count_ > INT32_MAX - n) return kFailed;
    int32_t wanted = count_ + n;
    if (wanted > capacity_) {
      int32_t capacity = capacity_ < 4 ? 4 : capacity_ > INT32_MAX / 2 ? INT32_MAX : capacity_ * 2;
      if (capacity < wanted) capacity = wanted;
      void *grown = reallocate(slots_, sizeof(Item *) * size_t(capacity));
      if (grown == nullptr) return kFailed;
      slots_ = static_cast<Item **>(grown);
      capacity_ = capacity;
    }
    for (int32_t i = count_; i < wanted; ++i) slots_[i] = nullptr;
    count_ = wanted;
    return kOk;
  }

  Item *find(const char *name) const {
    int32_t slot = index_.find(name, slots_, count_, nameAt);
    return slot < 0 ? nullptr : slots_[slot];
  }

  // The first item named `name`; when there is none, a new one created from
  // `name` in a new last slot (left null if the item cannot be created).
  // Null when there is neither.
  Item *findOrAdd(const char *name) {
    if (Item *found = find(name)) return found;
    if (grow(1) != kOk) return nullptr;
    return slots_[count_ - 1] = create<Item>(name);
  }

  // Reads items one after the other, appending each, until one's read gives
  // kFailed or memory runs out; the items read so far stay.
  void readAll(std::FILE *stream) {
    for (;;) {
      Item *item = create<Item>();
      if (item == nullptr) return;
      if (item->read(stream) != kOk || grow(1) != kOk) {
        delete item;
        return;
      }
      slots_[count_ - 1] = item;
    }
  }

  // Writes every item in order, a null slot as a blank line; kFailed at the
  // first output error.
  int writeAll(std::FILE *stream) const {
    for (int32_t i = 0; i < count_; ++i) {
      if (slots_[i] != nullptr ? slots_[i]->write(stream) != kOk : !put(stream, "\n"))
        return kFailed;
    }
    return kOk;
  }

  void clear() {
    for (int32_t i = 0; i < count_; ++i) delete slots_[i];
    std::free(slots_);
    slots_ = nullptr;
    count_ = capacity_ = 0;
    index_.reset();
  }

 private:
  static const char *nameAt(const void *items, int32_t slot) {
    const Item *item = static_cast<Item *const *>(items)[slot];
    return item != nullptr ? (item->*NameOf)() : nullptr;
  }

  Item **slots_ = nullptr;
  int32_t count_ = 0;
  int32_t capacity_ = 0;
  mutable NameIndex index_;
};

}  // namespace fskit::ini
