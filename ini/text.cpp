// SPDX-License-Identifier: MIT
// The text setters' rules, shared by lines, paragraphs and documents.
#include <cstring>

#include "ini/storage.h"
#include "platform/ascii.h"

namespace fskit::ini {

void setText(char *&field, const char *text, Trim trim) {
  if (field != nullptr && text != nullptr && std::strcmp(field, text) == 0) return;
  char *old = field;  // freed last: `text` may point into it
  field = nullptr;
  if (text != nullptr) {
    if (trim == Trim::kBoth)
      while (ascii::isSpace(*text)) ++text;
    size_t length = std::strlen(text);
    // A carriage return before the line feed goes with the other trailing
    // control characters.
    if (trim != Trim::kNone)
      while (length > 0 && (ascii::isSpace(text[length - 1]) || ascii::isCntrl(text[length - 1])))
        --length;
    if (length > 0) {
      char *copy = static_cast<char *>(std::malloc(length + 1));
      if (copy != nullptr) {
        std::memcpy(copy, text, length);
        copy[length] = '\0';
        field = copy;
      }
    }
  }
  std::free(old);
}

}  // namespace fskit::ini
