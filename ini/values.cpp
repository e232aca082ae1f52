// Looking values up, setting them, and walking through all of them.
#include <cstdio>
#include <cstring>

#include <fskit/ini.h>

#include "ini/state.h"

namespace {

const char *shown(const char *text) { return text != nullptr ? text : "(null)"; }

void copyTo(char *buffer, const char *text) {
  if (buffer != nullptr) std::strcpy(buffer, text);
}

}  // namespace

extern "C" {

FSKIT_API int32_t fsIniGetValue(int32_t handle, const char *paragraph, const char *topic,
                                char *value, char *comment) {
  copyTo(value, "");
  copyTo(comment, "");
  fskit::ini::Slot *slot = fskit::ini::slotOf(handle);
  if (slot == nullptr) return 0;
  const char *found = slot->document->valueOf(paragraph, topic);
  if (found == nullptr) {
    std::fprintf(stderr, "Cannot find value for paragraph \"%s\" topic \"%s\"\n",
                 shown(paragraph), shown(topic));
    return 0;
  }
  copyTo(value, found);
  return 1;
}

FSKIT_API int32_t fsIniSetValue(int32_t handle, const char *paragraph, const char *topic,
                                const char *value, const char *comment) {
  fskit::ini::Slot *slot = fskit::ini::slotOf(handle);
  if (slot == nullptr) return 0;
  slot->document->setValue(paragraph, topic, value);
  if (comment != nullptr && *comment != '\0')
    slot->document->setComment(paragraph, topic, comment);
  return 1;
}

FSKIT_API int32_t fsIniNext(int32_t first, int32_t handle, char *paragraph, char *topic,
                            char *value) {
  fskit::ini::Walk &walk = fskit::ini::iniState().walk;
  if (first != 0) walk = fskit::ini::Walk{};
  fskit::ini::Slot *slot = fskit::ini::slotOf(handle);
  if (slot == nullptr) return 0;
  const fskit::ini::FsIniFile &document = *slot->document;
  for (;;) {
    if (walk.paragraph < 0) {
      // The walk ends at the end of the list or at a paragraph without name.
      if (document.paragraphNameAt(walk.nextParagraph) == nullptr) return 0;
      walk.paragraph = walk.nextParagraph++;
      walk.document = slot->serial;
      walk.nextLine = 0;
    }
    // Lines are taken from the first paragraph of this name in the document
    // of `handle`, so a duplicate paragraph's turn delivers the first one's
    // topics again, and a walk begun on another handle goes on with the
    // paragraph of that name here.
    const char *name = fskit::ini::paragraphNameOf(walk.document, walk.paragraph);
    const char *lineTopic = document.topicAt(name, walk.nextLine++);
    if (lineTopic == nullptr) {  // end of paragraph, or a blank or comment line
      walk.paragraph = -1;
      continue;
    }
    char unusedComment[1];
    if (fsIniGetValue(handle, name, lineTopic, value, unusedComment) == 0) continue;
    copyTo(paragraph, name);
    copyTo(topic, lineTopic);
    return 1;
  }
}

}  // extern "C"
