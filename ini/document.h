// SPDX-License-Identifier: MIT
// The in-memory INI document: paragraphs of lines, each line a topic with its
// value and comment, a comment alone, or blank. Every line that is understood
// is kept in file order, so that a document written back keeps its comments
// and blank lines. Duplicates are kept too; lookups give the first match.
// A name (topic or paragraph name) is set when its line or paragraph is made
// or read and is not changed once the item is in a list.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "ini/storage.h"

namespace fskit::ini {

// Lines are taken with fgets into this many bytes: at most 1022 characters,
// the line feed among them when it fits, so a longer line reaches the parser
// as several lines.
inline constexpr int kLineBuffer = 1023;

class FsIniLine {
 public:
  explicit FsIniLine(const char *topic = nullptr, const char *value = nullptr,
                     const char *comment = nullptr);
  ~FsIniLine() { clear(); }
  FsIniLine(const FsIniLine &) = delete;
  FsIniLine &operator=(const FsIniLine &) = delete;

  void clear();
  void setTopic(const char *text) { setText(topic_, text, Trim::kTrailing); }
  void setValue(const char *text) { setText(value_, text, Trim::kTrailing); }
  void setComment(const char *text) { setText(comment_, text, Trim::kBoth); }

  // What a line of text is to the reader.
  enum class Kind {
    kBlank,
    kComment,
    kTopic,   // has a '=' (the topic may still be empty, thus null)
    kHeader,  // begins with '[': the paragraph ends before it
    kOther,   // none of these: the paragraph ends, the line is dropped
  };
  // Takes its topic, value and comment from `text`, one piece of at most
  // kLineBuffer - 1 bytes as it was read (cut up in place), and says what the
  // text is; a header leaves the line empty.
  Kind take(char *text);
  // Takes one text line: kOk when it belongs to the paragraph (blank lines
  // included), kFailed when the paragraph ends here.
  int read(std::FILE *stream);
  int write(std::FILE *stream) const;
  // What write() puts out, as a text.
  std::string text() const;

  const char *topic() const { return topic_; }
  const char *value() const { return value_; }
  const char *comment() const { return comment_; }

 private:
  template <class Put>
  bool format(Put put) const;

  char *topic_ = nullptr;    // null on blank and comment lines
  char *value_ = nullptr;    // without its quotes
  char *comment_ = nullptr;  // without the ';' and the blanks after it
};

class FsIniParagraph {
 public:
  explicit FsIniParagraph(const char *name = nullptr) { setName(name); }
  ~FsIniParagraph() { clear(); }
  FsIniParagraph(const FsIniParagraph &) = delete;
  FsIniParagraph &operator=(const FsIniParagraph &) = delete;

  void clear();
  void setName(const char *text) { setText(name_, text, Trim::kNone); }
  int grow(int32_t n) { return lines_.grow(n); }

  FsIniLine *findLine(const char *topic) const { return lines_.find(topic); }
  const char *valueOf(const char *topic) const;
  void setValue(const char *topic, const char *text);
  void setComment(const char *topic, const char *text);
  const char *topicAt(int32_t index) const;

  // The name in `text`, a header line from its '[' on, cut out in place; null
  // when the text is no header with a name.
  static char *headerName(char *text);
  // kOk when a paragraph was read, kFailed when none starts here (the
  // stream is then set back to where it was).
  int read(std::FILE *stream);
  int write(std::FILE *stream) const;

  const char *name() const { return name_; }
  int32_t count() const { return lines_.count(); }
  const FsIniLine *lineAt(int32_t index) const { return lines_.at(index); }

 private:
  char *name_ = nullptr;  // exactly as between the brackets
  SlotList<FsIniLine, &FsIniLine::topic> lines_;
};

class FsIniFile {
 public:
  // A new empty document, or null when it or its copy of the name cannot be
  // allocated.
  static FsIniFile *create(const char *fileName);
  ~FsIniFile();
  FsIniFile(const FsIniFile &) = delete;
  FsIniFile &operator=(const FsIniFile &) = delete;

  void clear() { paragraphs_.clear(); }
  int grow(int32_t n) { return paragraphs_.grow(n); }

  FsIniParagraph *findParagraph(const char *name) const { return paragraphs_.find(name); }
  const char *valueOf(const char *paragraph, const char *topic) const;
  void setValue(const char *paragraph, const char *topic, const char *text);
  void setComment(const char *paragraph, const char *topic, const char *text);
  const char *paragraphNameAt(int32_t index) const;
  const char *topicAt(const char *paragraph, int32_t index) const;

  // Reading always succeeds with a stream: whatever cannot be parsed ends
  // the document. kFailed only for a null stream.
  int read(std::FILE *stream);
  int write(std::FILE *stream) const;

  const char *fileName() const { return fileName_; }
  int32_t count() const { return paragraphs_.count(); }
  const FsIniParagraph *paragraphAt(int32_t index) const { return paragraphs_.at(index); }

 private:
  FsIniFile() = default;

  char *fileName_ = nullptr;
  SlotList<FsIniParagraph, &FsIniParagraph::name> paragraphs_;
};

}  // namespace fskit::ini
