// Process-wide state of the INI family: the slot table behind the handles,
// where fsIniNext stands, and the test seams. Constant-initialised: nothing
// runs at load time, and the table starts zeroed.
#pragma once

#include <cstdint>
#include <cstdio>

#include "ini/document.h"

namespace fskit::ini {

inline constexpr int32_t kSlotCount = 10;
inline constexpr int32_t kFirstHandle = 1000;

struct Slot {
  FsIniFile *document = nullptr;  // null: the slot is free
  char *fileName = nullptr;       // from strmalloc, freed with free
  uint64_t serial = 0;            // which opening put the document here
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
};

// Makes the stream over a temporary file's descriptor (test seam).
using TemporaryOpener = std::FILE *(*)(int fd);

struct IniState {
  Slot slots[kSlotCount];
  Walk walk;
  uint64_t openings = 0;  // serial of the latest document put in a slot
  long allocationsLeft = -1;  // allocations that may still succeed; -1: all
  TemporaryOpener openTemporary = nullptr;  // null: fdopen
};

IniState &iniState();

// The slot of a valid handle, or null.
Slot *slotOf(int32_t handle);
// The name of paragraph `index` of the open document with serial `serial`;
// null when that document has been released or the paragraph has no name.
const char *paragraphNameOf(uint64_t serial, int32_t index);
// Frees the slot's document and file name; the slot is free again.
void releaseSlot(Slot &slot);

namespace testing {
// Makes fsIniWriteFile write a replacement through `open` instead of fdopen
// (null: fdopen again), so that a test can make the writing fail.
void setTemporaryOpener(TemporaryOpener open);
}  // namespace testing

}  // namespace fskit::ini
