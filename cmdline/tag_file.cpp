// SPDX-License-Identifier: MIT
// kwaReadTags: a tag file read line by line into a tag table.
#include <cstdio>
#include <cstring>

#include <fskit/cmdline.h>
#include <fskit/strings.h>

#include "cmdline/tags.h"

using fskit::tags::copyCut;

namespace {

constexpr size_t kLineRead = 254;  // characters taken by one read
constexpr size_t kTagTaken = 64;   // kwaAddToTbl keeps 63 of them
constexpr size_t kLabelTaken = 127;
constexpr int kKeywordLabel = 60;  // "##" + 60 + "=" still fits a label

// One read takes at most kLineRead characters, the line feed counted; the
// rest of a longer line comes with the next read, as a line of its own.
bool readLine(std::FILE *stream, char *line) {
  return std::fgets(line, int(kLineRead + 1), stream) != nullptr;
}

}  // namespace

extern "C" {

FSKIT_API int32_t kwaReadTags(std::FILE *stream, int32_t mode, int32_t *count,
                              int32_t *capacity, KwaTagEntry **table) {
  if (stream == nullptr) return 1;
  char line[kLineRead + 1];
  while (!std::feof(stream) && readLine(stream, line)) {
    if (char *comment = std::strchr(line, '!')) *comment = '\0';
    if (strtrim(line) == 0) continue;
    // Trimmed: words are now separated by single blanks.
    char *blank = std::strchr(line, ' ');
    const char *rest = blank != nullptr ? blank + 1 : "";
    if (blank != nullptr) *blank = '\0';
    char tag[kTagTaken + 1];
    char label[kLabelTaken + 1];
    copyCut(tag, line, kTagTaken);
    copyCut(label, rest, kLabelTaken);
    if (mode != 0 && *label != '\0') {
      strupper(label);
      char keyword[kLabelTaken + 1];
      std::snprintf(keyword, sizeof keyword, "##%.*s=", kKeywordLabel, label);
      std::memcpy(label, keyword, sizeof keyword);
    }
    kwaAddToTbl(tag, label, count, capacity, table);
  }
  return 1;
}

}  // extern "C"
