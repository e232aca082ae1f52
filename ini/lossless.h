// SPDX-License-Identifier: MIT
// The lossless mode of the INI document, for the fskit tool and other C++
// code of the project; no C function reaches it.
//
// A file is kept as its lines, byte for byte, and an unchanged document
// writes back the same bytes: lines before the first paragraph, lines that
// the C functions drop or stop at ("[]", lines without '='), CR LF and a
// missing last line end, any byte, NUL included. Each line is understood as
// the C functions read it (its first kLineBuffer - 1 bytes: a longer line
// is one line here, where they read it in pieces), and lookups give the
// first paragraph and the first topic of a name, so that wherever the C
// functions can read a file both find the same line. Where they stop
// reading, this document goes on: a paragraph runs to the next line that
// begins with '[' ("[]" begins one without a name, never found), and a UTF-8
// byte order mark before the first line is passed over.
//
// Setting a value changes only the one line it concerns, or adds lines
// where fsIniSetValue and fsIniWriteFile would put them, in their layout.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "ini/document.h"

namespace fskit::ini::lossless {

class Document {
 public:
  Document() = default;  // an empty file
  explicit Document(const std::string &text);

  // The document of a file, or nullopt with "Error opening ini file NAME"
  // on standard error when it cannot be read (a directory included). With
  // `problem` the message goes there instead (the Python package hands it to
  // its caller).
  static std::optional<Document> readFile(const char *fileName, std::string *problem = nullptr);
  // Writes the bytes to `fileName` as fsIniWriteFile writes a document (a
  // regular file is replaced only by the complete text), byte for byte on
  // every platform; false, with the message of fsIniWriteFile when a file
  // cannot be opened (into `problem` when given), when it was not written.
  bool writeFile(const char *fileName, std::string *problem = nullptr) const;
  std::string text() const;

  // The value of `topic` in the first paragraph named `paragraph`; nullopt
  // when there is none, or the first line of that topic has no value.
  std::optional<std::string> value(const std::string &paragraph, const std::string &topic) const;

  // Sets the value, and the comment unless `comment` is empty (a blank one
  // removes it), with the trimming of fsIniSetValue. The first line of the
  // topic in the first paragraph of the name is written anew, keeping its
  // line end; a missing topic gets a line after the last line that the C
  // functions read into that paragraph, a missing paragraph its header and
  // the line at the end of the file. New lines end as the nearest line before
  // them that has a line end (LF when none has; CR LF on Windows). A paragraph
  // named "" is not set, as the C functions never write one.
  void setValue(const std::string &paragraph, const std::string &topic, const std::string &value,
                const std::string &comment);

  // The names of the paragraphs, each once, in file order ("" left out).
  std::vector<std::string> paragraphs() const;
  // The topics of the first paragraph named `paragraph`, each once, in file
  // order: those whose first line value() reads.
  std::vector<std::string> topics(const std::string &paragraph) const;

  // Removes the first line of `topic` in the first paragraph named
  // `paragraph`, the line whose value value() reads; false when there is none.
  bool removeTopic(const std::string &paragraph, const std::string &topic);
  // Removes the first paragraph named `paragraph`: its header and every line
  // up to the next header. False when there is none.
  bool removeParagraph(const std::string &paragraph);

  // What fsIniNext delivers when it walks the document: for each paragraph
  // in order, the topics of the first paragraph of its name up to its first
  // line without topic, each with the value of its first line (nullopt: the
  // walk passes over it with fsIniGetValue's message).
  struct Entry {
    std::string paragraph, topic;
    std::optional<std::string> value;
  };
  std::vector<Entry> values() const;

 private:
  struct Line {
    std::string bytes;  // as in the file, line end included
    FsIniLine::Kind kind = FsIniLine::Kind::kBlank;
    bool named = false;  // a header with a name, or a topic line with a topic
    std::string name;    // of the paragraph or the topic
    std::optional<std::string> value, comment;
  };
  static Line lineOf(std::string bytes, bool first);

  size_t findParagraph(const std::string &name) const;  // its header, or npos
  size_t findTopic(size_t header, const std::string &topic) const;  // or npos
  // For a new line after line `after`: the end of the nearest line up to
  // that one that has one, or the platform's.
  std::string lineEnd(size_t after) const;
  // Inserts the text of `line` (its line feed replaced by the file's line
  // end) as a new line before `at`.
  void insert(size_t at, std::string text);

  std::vector<Line> lines_;
};

// Why setValue() cannot write these texts without changing how the file
// reads (other lines, or the name the line is found by), or nullopt when it
// can: line ends anywhere, an empty paragraph name or one with ']', a topic
// that is empty, has blanks at its ends, holds '=' or begins like a header
// or a comment.
std::optional<std::string> refusal(const std::string &paragraph, const std::string &topic,
                                   const std::string &value, const std::string &comment);

// The value that the C functions read back from the line that fsIniSetValue
// and fsIniWriteFile make of `topic` and `value` ("" for none): `value`
// itself only when it can be read back whole.
std::string readBack(const std::string &topic, const std::string &value);

}  // namespace fskit::ini::lossless
