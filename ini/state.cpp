#include "ini/state.h"

namespace fskit::ini {

namespace {
constinit IniState state;
}

IniState &iniState() { return state; }

Slot *slotOf(int32_t handle) {
  if (handle < kFirstHandle || handle >= kFirstHandle + kSlotCount) return nullptr;
  Slot &slot = state.slots[handle - kFirstHandle];
  return slot.document != nullptr ? &slot : nullptr;
}

const char *paragraphNameOf(uint64_t serial, int32_t index) {
  for (const Slot &slot : state.slots)
    if (slot.document != nullptr && slot.serial == serial)
      return slot.document->paragraphNameAt(index);
  return nullptr;
}

void releaseSlot(Slot &slot) {
  delete slot.document;
  std::free(slot.fileName);
  slot = Slot{};
}

bool allocationAllowed() {
  if (state.allocationsLeft < 0) return true;
  if (state.allocationsLeft == 0) return false;
  --state.allocationsLeft;
  return true;
}

namespace testing {
void failAllocationsAfter(long count) { state.allocationsLeft = count < 0 ? -1 : count; }
void setTemporaryOpener(TemporaryOpener open) { state.openTemporary = open; }
}  // namespace testing

}  // namespace fskit::ini
