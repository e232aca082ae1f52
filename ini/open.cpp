// SPDX-License-Identifier: MIT
// Opening documents into slots and releasing them.
#include <cstdio>

#include <fskit/frame.h>
#include <fskit/ini.h>

#include "ini/files.h"
#include "ini/state.h"
#include "platform/platform.h"

namespace fskit::ini {
namespace {

// Takes the lowest free slot and the serial of this opening; null when all
// slots are in use. The slot stays empty, a bad handle, until the document
// is put in it.
Slot *takeSlot(uint64_t &serial) {
  IniState &state = iniState();
  std::lock_guard<platform::Mutex> table(state.tableLock);
  for (Slot &slot : state.slots)
    if (!slot.taken) {
      slot.taken = true;
      serial = ++state.openings;
      return &slot;
    }
  return nullptr;
}

int32_t openSlot(const char *fileName, bool readFile) {
  if (fileName == nullptr) return 0;
  uint64_t serial;
  Slot *slot = takeSlot(serial);
  if (slot == nullptr) {
    std::fprintf(stderr, "No more file handles available for %s\n", fileName);
    return 0;
  }
  char *nameCopy = strmalloc(fileName);
  if (nameCopy == nullptr) {
    giveBack(*slot);
    std::fprintf(stderr, "Out of memory for ini file %s\n", fileName);
    return 0;
  }
  std::FILE *stream = nullptr;
  if (readFile && (stream = openForReading(fileName)) == nullptr) {
    std::free(nameCopy);
    giveBack(*slot);
    std::fprintf(stderr, "Error opening ini file %s\n", fileName);
    return 0;
  }
  FsIniFile *document = FsIniFile::create(fileName);
  if (document == nullptr) {
    std::free(nameCopy);
    if (stream != nullptr) std::fclose(stream);
    giveBack(*slot);
    std::fprintf(stderr, "Error allocating ini file %s\n", fileName);
    return 0;
  }
  if (stream != nullptr) {
    document->read(stream);
    std::fclose(stream);
  }
  // The file is read before the slot is locked: nobody else can reach the
  // new document yet.
  std::unique_lock<platform::SharedMutex> publish = lockForWriting(*slot);
  slot->document = document;
  slot->fileName = nameCopy;
  slot->serial = serial;
  return kFirstHandle + int32_t(slot - iniState().slots);
}

}  // namespace

std::FILE *openForReading(const char *fileName) {
  // Binary, as everywhere but Windows anyway: the reader goes back to a
  // line's start with ftell/fseek, which a Windows text stream miscounts on
  // lines ending in LF alone; a CR before the LF is trimmed like other
  // trailing control characters.
  std::FILE *stream = std::fopen(fileName, "rb");
  struct stat status;
  if (stream != nullptr && platform::_stat(fileName, &status) == 0 && S_ISDIR(status.st_mode)) {
    std::fclose(stream);
    stream = nullptr;
  }
  return stream;
}

}  // namespace fskit::ini

extern "C" {

FSKIT_API int32_t fsIniNewFile(const char *fileName) {
  return fskit::ini::openSlot(fileName, false);
}

FSKIT_API int32_t fsIniReadFile(const char *fileName) {
  return fskit::ini::openSlot(fileName, true);
}

FSKIT_API void fsIniReleaseFile(int32_t handle) {
  if (fskit::ini::WriteHeld slot{handle}) fskit::ini::releaseSlot(*slot);
}

}  // extern "C"
