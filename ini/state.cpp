// SPDX-License-Identifier: MIT
#include "ini/state.h"

#include <cstring>

namespace fskit::ini {

namespace {
constinit IniState state;
}

IniState &iniState() { return state; }

Slot *slotAt(int32_t handle) {
  if (handle < kFirstHandle || handle >= kFirstHandle + kSlotCount) return nullptr;
  return &state.slots[handle - kFirstHandle];
}

void releaseSlot(Slot &slot) {
  delete slot.document;
  std::free(slot.fileName);
  slot.document = nullptr;
  slot.fileName = nullptr;
  slot.serial = 0;
  giveBack(slot);
}

void giveBack(Slot &slot) {
  std::lock_guard<platform::Mutex> table(state.tableLock);
  slot.taken = false;
}

char *copyValueOf(int32_t handle, const char *paragraph, const char *topic) {
  ReadHeld slot(handle);
  const char *value = slot ? slot->document->valueOf(paragraph, topic) : nullptr;
  if (value == nullptr) return nullptr;
  size_t size = std::strlen(value) + 1;
  char *copy = static_cast<char *>(std::malloc(size));
  if (copy != nullptr) std::memcpy(copy, value, size);
  return copy;
}

}  // namespace fskit::ini
