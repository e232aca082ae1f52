// SPDX-License-Identifier: MIT
// A paragraph: its header, its lines, and the lookups of topics within it.
#include <cstring>

#include "ini/document.h"
#include "platform/ascii.h"
#include "platform/file_offset.h"

namespace fskit::ini {

void FsIniParagraph::clear() {
  setText(name_, nullptr, Trim::kNone);
  lines_.clear();
}

const char *FsIniParagraph::valueOf(const char *topic) const {
  const FsIniLine *line = findLine(topic);
  return line != nullptr ? line->value() : nullptr;
}

void FsIniParagraph::setValue(const char *topic, const char *text) {
  if (FsIniLine *line = lines_.findOrAdd(topic)) line->setValue(text);
}

void FsIniParagraph::setComment(const char *topic, const char *text) {
  if (FsIniLine *line = lines_.findOrAdd(topic)) line->setComment(text);
}

const char *FsIniParagraph::topicAt(int32_t index) const {
  const FsIniLine *line = lines_.at(index);
  return line != nullptr ? line->topic() : nullptr;
}

char *FsIniParagraph::headerName(char *text) {
  // A header needs a name: "[" at the very end of the input or "[]" has none.
  if (text[0] != '[' || text[1] == '\0' || text[1] == ']') return nullptr;
  // Without a ']' the name runs to the end of the line, line feed included.
  if (char *close = std::strchr(text + 1, ']')) *close = '\0';
  return text + 1;
}

int FsIniParagraph::read(std::FILE *stream) {
  clear();
  if (stream == nullptr) return kFailed;
  const fskit::platform::FileOffset start = fskit::platform::tellFile(stream);
  char text[kLineBuffer];
  char *p;
  do {
    if (std::fgets(text, kLineBuffer, stream) == nullptr) {
      fskit::platform::seekFile(stream, start, SEEK_SET);
      return kFailed;
    }
    p = text;
    while (ascii::isSpace(*p)) ++p;
  } while (*p == '\0');
  char *name = headerName(p);
  if (name == nullptr) {
    fskit::platform::seekFile(stream, start, SEEK_SET);
    return kFailed;
  }
  setName(name);
  lines_.readAll(stream);
  return kOk;
}

int FsIniParagraph::write(std::FILE *stream) const {
  if (stream == nullptr) return kFailed;
  // A paragraph without a name can never be looked up; writing it as "[]"
  // would end the reading of the file there, so it is left out.
  if (name_ == nullptr) return kOk;
  if (!put(stream, "[") || !put(stream, name_) || !put(stream, "]\n")) return kFailed;
  return lines_.writeAll(stream);
}

}  // namespace fskit::ini
