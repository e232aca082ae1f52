// SPDX-License-Identifier: MIT
// One line of a paragraph: taking it from a stream or a text and writing it back.
#include <cstring>

#include "ini/document.h"
#include "platform/ascii.h"
#include "platform/file_offset.h"

namespace fskit::ini {

namespace {

char *skipSpace(char *text) {
  while (ascii::isSpace(*text)) ++text;
  return text;
}

}  // namespace

FsIniLine::FsIniLine(const char *topic, const char *value, const char *comment) {
  setTopic(topic);
  setValue(value);
  setComment(comment);
}

void FsIniLine::clear() {
  std::free(topic_);
  std::free(value_);
  std::free(comment_);
  topic_ = value_ = comment_ = nullptr;
}

FsIniLine::Kind FsIniLine::take(char *text) {
  clear();
  char *p = skipSpace(text);
  if (*p == '\0') return Kind::kBlank;
  if (*p == '[') return Kind::kHeader;
  if (*p == ';') {
    setComment(p + 1);
    return Kind::kComment;
  }
  char *equals = std::strchr(p, '=');
  if (equals == nullptr) return Kind::kOther;
  *equals = '\0';
  setTopic(p);

  char *value = equals + 1;
  while (*value == '=' || ascii::isSpace(*value)) ++value;
  if (*value == '\0') return Kind::kTopic;
  bool quoted = *value == '"';
  if (quoted) ++value;
  char *end = std::strchr(value, quoted ? '"' : ';');
  if (end == nullptr) end = value + std::strlen(value);
  char stop = *end;
  *end = '\0';
  if (*value != '\0') setValue(value);
  // Nothing after a quoted value is read, not even a comment; this holds for
  // an empty pair of quotes too, so `topic = ""` is a topic without value.
  if (quoted || stop != ';') return Kind::kTopic;
  char *comment = skipSpace(end + 1);
  if (*comment != '\0') setComment(comment);
  return Kind::kTopic;
}

int FsIniLine::read(std::FILE *stream) {
  clear();
  if (stream == nullptr) return kFailed;
  char text[kLineBuffer];
  const fskit::platform::FileOffset start = fskit::platform::tellFile(stream);
  if (std::fgets(text, kLineBuffer, stream) == nullptr) return kFailed;
  switch (take(text)) {
    case Kind::kHeader:
      // The next paragraph's header: leave it for that paragraph to read.
      fskit::platform::seekFile(stream, start, SEEK_SET);
      return kFailed;
    case Kind::kOther:
      return kFailed;  // not a paragraph line: dropped, the paragraph ends
    default:
      return kOk;  // blank lines are kept
  }
}

// Puts the line's text, its line feed included, through `put`; false at the
// first output error.
template <class Put>
bool FsIniLine::format(Put put) const {
  if (topic_ != nullptr) {
    if (!put(topic_) || !put(" = ")) return false;
    if (value_ != nullptr) {
      // A ';' would start a comment when the line is read back.
      bool quote = std::strchr(value_, ';') != nullptr;
      if (quote ? !(put("\"") && put(value_) && put("\"")) : !put(value_)) return false;
    }
  }
  if (comment_ != nullptr && !(put(topic_ != nullptr ? "\t; " : "; ") && put(comment_)))
    return false;
  return put("\n");
}

int FsIniLine::write(std::FILE *stream) const {
  if (stream == nullptr) return kFailed;
  return format([stream](const char *text) { return put(stream, text); }) ? kOk : kFailed;
}

std::string FsIniLine::text() const {
  std::string text;
  format([&text](const char *part) {
    text += part;
    return true;
  });
  return text;
}

}  // namespace fskit::ini
