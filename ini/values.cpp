// SPDX-License-Identifier: MIT
// Looking values up, setting them, and walking through all of them.
#include <cstdio>
#include <cstring>

#include <fskit/ini.h>

#include "ini/state.h"

namespace {

using fskit::ini::FsIniParagraph;
using fskit::ini::ReadHeld;
using fskit::ini::Slot;

const char *shown(const char *text) { return text != nullptr ? text : "(null)"; }

void copyTo(char *buffer, const char *text) {
  if (buffer != nullptr) std::strcpy(buffer, text);
}

// Copies the value of `topic` in `found` (the first paragraph named
// `paragraph`, or null) into `value`: 1, or 0 with the message.
int32_t deliverValue(const FsIniParagraph *found, const char *paragraph, const char *topic,
                     char *value) {
  const char *text = found != nullptr ? found->valueOf(topic) : nullptr;
  if (text == nullptr) {
    std::fprintf(stderr, "Cannot find value for paragraph \"%s\" topic \"%s\"\n",
                 shown(paragraph), shown(topic));
    return 0;
  }
  copyTo(value, text);
  return 1;
}

// The name of paragraph `index` of the document with serial `serial`: the
// walked one, `own`, or the one of another slot, which is then held in
// `other` for as long as the name is used. Null when that document has been
// released or the paragraph has no name.
const char *walkedName(const Slot &own, uint64_t serial, int32_t index,
                       std::shared_lock<fskit::platform::SharedMutex> &other) {
  if (other.owns_lock()) other.unlock();
  if (serial == own.serial) return own.document->paragraphNameAt(index);
  for (Slot &slot : fskit::ini::iniState().slots) {
    if (&slot == &own) continue;
    std::shared_lock<fskit::platform::SharedMutex> lock = fskit::ini::lockForReading(slot);
    if (slot.document != nullptr && slot.serial == serial) {
      other = std::move(lock);
      return slot.document->paragraphNameAt(index);
    }
  }
  return nullptr;
}

}  // namespace

extern "C" {

FSKIT_API int32_t fsIniGetValue(int32_t handle, const char *paragraph, const char *topic,
                                char *value, char *comment) {
  copyTo(value, "");
  copyTo(comment, "");
  ReadHeld slot(handle);
  if (!slot) return 0;
  return deliverValue(slot->document->findParagraph(paragraph), paragraph, topic, value);
}

FSKIT_API int32_t fsIniSetValue(int32_t handle, const char *paragraph, const char *topic,
                                const char *value, const char *comment) {
  fskit::ini::WriteHeld slot(handle);
  if (!slot) return 0;
  slot->document->setValue(paragraph, topic, value);
  if (comment != nullptr && *comment != '\0')
    slot->document->setComment(paragraph, topic, comment);
  return 1;
}

FSKIT_API int32_t fsIniNext(int32_t first, int32_t handle, char *paragraph, char *topic,
                            char *value) {
  fskit::ini::IniState &state = fskit::ini::iniState();
  std::lock_guard<fskit::platform::Mutex> walking(state.walkLock);
  fskit::ini::Walk &walk = state.walk;
  if (first != 0) walk = fskit::ini::Walk{};
  ReadHeld slot(handle);
  if (!slot) return 0;
  const fskit::ini::FsIniFile &document = *slot->document;
  std::shared_lock<fskit::platform::SharedMutex> other;
  for (;;) {
    if (walk.paragraph < 0) {
      // The walk ends at the end of the list or at a paragraph without name.
      if (document.paragraphNameAt(walk.nextParagraph) == nullptr) return 0;
      walk.paragraph = walk.nextParagraph++;
      walk.document = slot->serial;
      walk.nextLine = 0;
      walk.found = nullptr;
    }
    // Lines are taken from the first paragraph of this name in the document
    // of `handle`, so a duplicate paragraph's turn delivers the first one's
    // topics again, and a walk begun on another handle goes on with the
    // paragraph of that name here.
    const char *name = walkedName(*slot, walk.document, walk.paragraph, other);
    const FsIniParagraph *found = walk.found;
    if (found == nullptr || walk.document != slot->serial) {
      found = document.findParagraph(name);
      if (walk.document == slot->serial) walk.found = found;
    }
    int32_t line = walk.nextLine++;
    const char *lineTopic = found != nullptr ? found->topicAt(line) : nullptr;
    if (lineTopic == nullptr) {  // end of paragraph, or a blank or comment line
      walk.paragraph = -1;
      continue;
    }
    copyTo(value, "");
    if (deliverValue(found, name, lineTopic, value) == 0) continue;
    copyTo(paragraph, name);
    copyTo(topic, lineTopic);
    return 1;
  }
}

}  // extern "C"
