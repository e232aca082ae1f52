// SPDX-License-Identifier: MIT
// The INI readers on any text (an odd first byte: memory runs out after byte / 2 allocations):
// classic lookups and round trips; the lossless document's bytes, one-line sets and agreement.
#include <cctype>
#include <unordered_map>

#include "fuzz/support/fuzz_support.h"
#include "ini/document.h"
#include "ini/lossless.h"
#include "tests/support/alloc_fault.h"

using namespace fskit::ini;
using lossless::Document;

namespace {

// With `allocations` 0 or more, memory runs out after that many allocations of the reading. True
// when the reading took in all of `text`.
bool read(FsIniFile &document, const std::string &text, long allocations = -1) {
  if (text.empty()) return true;  // fmemopen takes no empty buffer
  std::string bytes = text;
  std::FILE *stream = fmemopen(bytes.data(), bytes.size(), "r");
  FUZZ_CHECK(stream != nullptr);
  if (allocations >= 0) fskit::test::failAllocationFrom(allocations + 1);
  const int result = document.read(stream);
  fskit::test::failAllocationFrom(0);
  FUZZ_CHECK(result == kOk);
  const bool all = std::ftell(stream) == long(text.size());
  std::fclose(stream);
  return all;
}

std::string written(const FsIniFile &document) {
  return writtenTo([&](std::FILE *stream) { FUZZ_CHECK(document.write(stream) == kOk); });
}

// Checks that lookups give the first item of each name. True when a file can carry back what is
// written: no name holding a line feed (a header without ']'), no value beginning with white
// space or "=" (it stood in quotes, which only a ';' brings back).
bool checkLookups(const FsIniFile &document) {
  bool carried = true;
  std::unordered_map<std::string, const FsIniParagraph *> firstParagraph;
  for (int32_t i = 0; i < document.count(); ++i) {
    const FsIniParagraph *paragraph = document.paragraphAt(i);
    if (paragraph == nullptr || paragraph->name() == nullptr) continue;
    carried = carried && std::strchr(paragraph->name(), '\n') == nullptr;
    firstParagraph.try_emplace(paragraph->name(), paragraph);
    FUZZ_CHECK(document.findParagraph(paragraph->name()) == firstParagraph[paragraph->name()]);
    std::unordered_map<std::string, const FsIniLine *> firstLine;
    for (int32_t j = 0; j < paragraph->count(); ++j) {
      const FsIniLine *line = paragraph->lineAt(j);
      if (line == nullptr || line->topic() == nullptr) continue;
      const char *value = line->value() != nullptr ? line->value() : "x";
      carried = carried && !std::isspace(static_cast<unsigned char>(*value)) && *value != '=';
      firstLine.try_emplace(line->topic(), line);
      FUZZ_CHECK(paragraph->findLine(line->topic()) == firstLine[line->topic()]);
    }
  }
  return carried;
}

// Whether a line of `text` is `longest` bytes or longer.
bool hasLongLine(const std::string &text, size_t longest) {
  size_t start = 0;
  for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
    if (end - start >= longest) return true;
  return text.size() - start >= longest;
}

// True when the bytes between the common start and end of `before` and `after` hold no line feed
// of `before` and at most three of `after` (a header and a line after a last line given its end).
bool changedOneLine(const std::string &before, const std::string &after) {
  auto [b, a] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  auto [bEnd, aEnd] = std::mismatch(before.rbegin(), std::make_reverse_iterator(b), after.rbegin(),
                                    std::make_reverse_iterator(a));
  return std::count(b, bEnd.base(), '\n') == 0 && std::count(a, aEnd.base(), '\n') <= 3;
}

void checkSet(const std::string &text, const std::string &paragraph, const std::string &topic) {
  Document changed(text);
  changed.setValue(paragraph, topic, "fuzz value", "");
  const std::string after = changed.text();
  FUZZ_CHECK(changedOneLine(text, after));
  FUZZ_CHECK(Document(after).text() == after);
  // A short topic's line is read in one piece.
  if (topic.size() < 900) FUZZ_CHECK(Document(after).value(paragraph, topic) == "fuzz value");
}

}  // namespace

FUZZ_TARGET(input) {
  const uint8_t budget = takeByte(input);
  const std::string text(input);
  const bool faults = budget % 2 == 1;
  std::unique_ptr<FsIniFile> first(FsIniFile::create("fuzz.ini")), second(FsIniFile::create("2"));
  FUZZ_CHECK(first != nullptr && second != nullptr);
  const bool all = read(*first, text, faults ? budget / 2 : -1);
  const bool carried = checkLookups(*first);
  // The lossless document keeps the bytes, and agrees with a classic reading of the whole text.
  const Document document(text);
  FUZZ_CHECK(document.text() == text);
  const std::vector<Document::Entry> entries = document.values();
  const bool whole = all && !faults && !hasLongLine(text, size_t(kLineBuffer - 1));
  for (const Document::Entry &entry : entries) {
    if (!whole) break;
    const char *value = first->valueOf(entry.paragraph.c_str(), entry.topic.c_str());
    FUZZ_CHECK(entry.value ? value != nullptr && *entry.value == value : value == nullptr);
  }
  if (!entries.empty()) {
    checkSet(text, entries.front().paragraph, entries.front().topic);
    checkSet(text, entries.front().paragraph, "fuzz topic");
  }
  checkSet(text, "fuzz paragraph", "t");

  // The classic round trip, unless a written line is too long to be read in one piece.
  const std::string once = written(*first);
  if (!carried || hasLongLine(once.substr(0, once.rfind('\n') + 1), size_t(kLineBuffer - 1)))
    return;
  read(*second, once);
  FUZZ_CHECK(written(*second) == once);
}
