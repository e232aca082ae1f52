// One line of a paragraph: taking it from a stream and writing it back.
#include <cstring>

#include "frame/ascii.h"
#include "ini/document.h"

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

int FsIniLine::read(std::FILE *stream) {
  clear();
  if (stream == nullptr) return kFailed;
  char text[kLineBuffer];
  long start = std::ftell(stream);
  if (std::fgets(text, kLineBuffer, stream) == nullptr) return kFailed;
  char *p = skipSpace(text);
  if (*p == '\0') return kOk;  // a blank line is kept
  if (*p == '[') {
    // The next paragraph's header: leave it for that paragraph to read.
    std::fseek(stream, start, SEEK_SET);
    return kFailed;
  }
  if (*p == ';') {
    setComment(p + 1);
    return kOk;
  }
  char *equals = std::strchr(p, '=');
  if (equals == nullptr) return kFailed;  // not a paragraph line: dropped, the paragraph ends
  *equals = '\0';
  setTopic(p);

  char *value = equals + 1;
  while (*value == '=' || ascii::isSpace(*value)) ++value;
  if (*value == '\0') return kOk;
  bool quoted = *value == '"';
  if (quoted) ++value;
  char *end = std::strchr(value, quoted ? '"' : ';');
  if (end == nullptr) end = value + std::strlen(value);
  char stop = *end;
  *end = '\0';
  if (*value != '\0') setValue(value);
  // Nothing after a quoted value is read, not even a comment; this holds for
  // an empty pair of quotes too, so `topic = ""` is a topic without value.
  if (quoted || stop != ';') return kOk;
  char *comment = skipSpace(end + 1);
  if (*comment != '\0') setComment(comment);
  return kOk;
}

int FsIniLine::write(std::FILE *stream) const {
  if (stream == nullptr) return kFailed;
  if (topic_ != nullptr) {
    if (!put(stream, topic_) || !put(stream, " = ")) return kFailed;
    if (value_ != nullptr) {
      // A ';' would start a comment when the line is read back.
      bool quote = std::strchr(value_, ';') != nullptr;
      if (quote ? !(put(stream, "\"") && put(stream, value_) && put(stream, "\""))
                : !put(stream, value_))
        return kFailed;
    }
  }
  if (comment_ != nullptr &&
      !(put(stream, topic_ != nullptr ? "\t; " : "; ") && put(stream, comment_)))
    return kFailed;
  return put(stream, "\n") ? kOk : kFailed;
}

}  // namespace fskit::ini
