// SPDX-License-Identifier: MIT
// Process-wide state of the INI family: the slot table behind the handles
// and where fsIniNext stands. Constant-initialised: nothing runs at load
// time, and the table starts zeroed.
//
// Locking: each slot has a reader-writer lock over its document and file
// name. Lookups hold it shared, so readers of one handle run side by side;
// setting, writing and releasing hold it exclusive. Which slots are taken is
// guarded by the table lock, the walk of fsIniNext by the walk lock. Locks are
// taken in the order walk lock, slot locks, table lock; only the walk, which
// one thread at a time goes through, may hold two slot locks (both shared).
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <shared_mutex>

#include "ini/document.h"
#include "ini/ini_internal.h"
#include "platform/locks.h"

namespace fskit::ini {

inline constexpr int32_t kSlotCount = 10;

struct Slot {
  // Under `lock`:
  FsIniFile *document = nullptr;  // null: no open document
  char *fileName = nullptr;       // from strmalloc, freed with free
  uint64_t serial = 0;            // which opening put the document here
  // Under the table lock: set from the moment an opening chooses the slot
  // until the document there is released, so that two openings never
  // choose the same slot.
  bool taken = false;
  platform::SharedMutex lock;
  // While writers wait for `lock`, new readers queue at `turnstile` instead
  // of joining those inside, so that a stream of lookups cannot hold a
  // writer off for ever.
  std::atomic<int> writersWaiting{0};
  platform::Mutex turnstile;
};

// The walk of fsIniNext. It is not tied to a handle: the current paragraph
// is named by the document it was taken from, even when the walk goes on
// with another handle. That paragraph is kept as the serial of its document
// and its position there, not as a pointer to its name, so that a document
// released in the middle of a walk leaves nothing dangling: its name is
// looked up again on each call, and it has none once the document is gone.
struct Walk {
  int32_t nextParagraph = 0;
  int32_t paragraph = -1;  // -1: none
  uint64_t document = 0;   // serial of the document `paragraph` belongs to
  int32_t nextLine = 0;
  // The first paragraph of the current paragraph's name in that same
  // document, once looked up (null: not yet). It stays the first of its name
  // while the document is open: paragraphs are only added at the end.
  const FsIniParagraph *found = nullptr;
};

struct IniState {
  Slot slots[kSlotCount];
  platform::Mutex tableLock;
  uint64_t openings = 0;  // under the table lock: serial of the latest opening
  platform::Mutex walkLock;
  Walk walk;              // under the walk lock
};

IniState &iniState();

// The slot behind `handle`, open or not, or null when the number names no
// slot. Nothing is locked.
Slot *slotAt(int32_t handle);

inline std::shared_lock<platform::SharedMutex> lockForReading(Slot &slot) {
  if (slot.writersWaiting.load(std::memory_order_relaxed) != 0) {
    std::lock_guard<platform::Mutex> queue(slot.turnstile);  // behind the writer that holds it
  }
  return std::shared_lock<platform::SharedMutex>(slot.lock);
}

inline std::unique_lock<platform::SharedMutex> lockForWriting(Slot &slot) {
  slot.writersWaiting.fetch_add(1, std::memory_order_relaxed);
  std::unique_lock<platform::SharedMutex> lock;
  {
    std::lock_guard<platform::Mutex> queue(slot.turnstile);
    lock = std::unique_lock<platform::SharedMutex>(slot.lock);
  }
  slot.writersWaiting.fetch_sub(1, std::memory_order_relaxed);
  return lock;
}

// The open document of a handle, held under the slot's lock for as long as
// the holder lives; empty for a bad handle.
template <class Lock, Lock (*take)(Slot &)>
class Held {
 public:
  explicit Held(int32_t handle) {
    Slot *slot = slotAt(handle);
    if (slot == nullptr) return;
    lock_ = take(*slot);
    if (slot->document != nullptr) slot_ = slot;
  }
  explicit operator bool() const { return slot_ != nullptr; }
  Slot *operator->() const { return slot_; }
  Slot &operator*() const { return *slot_; }

 private:
  Lock lock_;
  Slot *slot_ = nullptr;
};
// For looking up: other readers of the handle go on side by side.
using ReadHeld = Held<std::shared_lock<platform::SharedMutex>, lockForReading>;
// For changing or releasing the document: nobody else uses the handle.
using WriteHeld = Held<std::unique_lock<platform::SharedMutex>, lockForWriting>;

// Frees the document and file name of a slot held exclusive; the slot is
// free again.
void releaseSlot(Slot &slot);
// Lets a later opening take a slot that holds no document.
void giveBack(Slot &slot);

}  // namespace fskit::ini
