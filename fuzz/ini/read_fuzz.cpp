// SPDX-License-Identifier: MIT
// The INI reader on any text: lookups find the first paragraph and line of
// each name, and a document that is written, read again and written again
// gives the same bytes. With the first input byte odd, memory runs out after
// (byte / 2) allocations of the first reading: what was read must still hold.
#include <unordered_map>

#include "fuzz/support/fuzz_support.h"
#include "ini/document.h"
#include "tests/support/alloc_fault.h"

using fskit::ini::FsIniFile;
using fskit::ini::FsIniLine;
using fskit::ini::FsIniParagraph;

namespace {

struct Document {
  FsIniFile *file = FsIniFile::create("fuzz.ini");
  Document() { FUZZ_CHECK(file != nullptr); }
  ~Document() { delete file; }
};

// With `allocations` 0 or more, memory runs out after that many allocations
// of the reading.
void read(FsIniFile &document, const std::string &text, long allocations = -1) {
  if (text.empty()) return;  // fmemopen takes no empty buffer
  std::string bytes = text;
  std::FILE *stream = fmemopen(bytes.data(), bytes.size(), "r");
  FUZZ_CHECK(stream != nullptr);
  if (allocations >= 0) fskit::test::failAllocationFrom(allocations + 1);
  const int result = document.read(stream);
  fskit::test::failAllocationFrom(0);
  FUZZ_CHECK(result == fskit::ini::kOk);
  std::fclose(stream);
}

std::string written(const FsIniFile &document) {
  return writtenTo(
      [&](std::FILE *stream) { FUZZ_CHECK(document.write(stream) == fskit::ini::kOk); });
}

// The lookups give the first item of each name, as a scan in order would.
void checkLookups(const FsIniFile &document) {
  std::unordered_map<std::string, const FsIniParagraph *> firstParagraph;
  for (int32_t i = 0; i < document.count(); ++i) {
    const FsIniParagraph *paragraph = document.paragraphAt(i);
    if (paragraph == nullptr || paragraph->name() == nullptr) continue;
    firstParagraph.try_emplace(paragraph->name(), paragraph);
    FUZZ_CHECK(document.findParagraph(paragraph->name()) == firstParagraph[paragraph->name()]);
    std::unordered_map<std::string, const FsIniLine *> firstLine;
    for (int32_t j = 0; j < paragraph->count(); ++j) {
      const FsIniLine *line = paragraph->lineAt(j);
      if (line == nullptr || line->topic() == nullptr) continue;
      firstLine.try_emplace(line->topic(), line);
      FUZZ_CHECK(paragraph->findLine(line->topic()) == firstLine[line->topic()]);
    }
  }
}

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// What a file cannot carry back: a name holding a line feed (its header had
// no closing bracket), a value that begins with white space or "=" (it stood
// in quotes, which only a ';' brings back), and a written line too long to be
// read in one piece.
bool writtenBackAsRead(const FsIniFile &document, const std::string &text) {
  for (int32_t i = 0; i < document.count(); ++i) {
    const FsIniParagraph *paragraph = document.paragraphAt(i);
    if (paragraph == nullptr) continue;
    if (paragraph->name() != nullptr && std::strchr(paragraph->name(), '\n') != nullptr) return false;
    for (int32_t j = 0; j < paragraph->count(); ++j) {
      const FsIniLine *line = paragraph->lineAt(j);
      if (line != nullptr && line->value() != nullptr &&
          (isSpace(line->value()[0]) || line->value()[0] == '='))
        return false;
    }
  }
  size_t start = 0;
  for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
    if (end - start > size_t(fskit::ini::kLineBuffer - 2)) return false;
  return true;
}

}  // namespace

FUZZ_TARGET(input) {
  const uint8_t budget = takeByte(input);
  Document first;
  read(*first.file, std::string(input), budget % 2 == 1 ? budget / 2 : -1);
  checkLookups(*first.file);

  const std::string once = written(*first.file);
  if (!writtenBackAsRead(*first.file, once)) return;
  Document second;
  read(*second.file, once);
  FUZZ_CHECK(written(*second.file) == once);
}
