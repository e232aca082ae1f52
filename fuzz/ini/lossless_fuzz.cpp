// SPDX-License-Identifier: MIT
// The lossless INI document on any bytes: read and written back, the same
// bytes; a value set changes one line of the old text (or none, adding lines)
// and reads back; where the classic reader takes in the whole text, both
// find the same values.

#include "fuzz/support/fuzz_support.h"
#include "ini/document.h"
#include "ini/lossless.h"

using fskit::ini::FsIniFile;
using fskit::ini::lossless::Document;

namespace {

// True when `after` differs from `before` within one line of `before` only:
// the bytes between their common start and common end hold no line feed of
// `before`, and at most three of `after` (a header and a line added after a
// last line given its line end).
bool changedOneLine(const std::string &before, const std::string &after) {
  size_t prefix = 0, suffix = 0;
  while (prefix < before.size() && prefix < after.size() && before[prefix] == after[prefix])
    ++prefix;
  while (suffix < before.size() - prefix && suffix < after.size() - prefix &&
         before[before.size() - 1 - suffix] == after[after.size() - 1 - suffix])
    ++suffix;
  auto feeds = [&](const std::string &text) {
    return std::count(text.begin() + prefix, text.end() - suffix, '\n');
  };
  return feeds(before) == 0 && feeds(after) <= 3;
}

// Whether the classic reader takes in all of `text`, each line in one piece.
bool classicReadsAll(const FsIniFile &document, const std::string &text) {
  size_t start = 0;
  for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
    if (end - start >= size_t(fskit::ini::kLineBuffer - 1)) return false;
  if (text.size() - start >= size_t(fskit::ini::kLineBuffer - 1)) return false;
  std::string bytes = text;
  std::FILE *stream = fmemopen(bytes.data(), bytes.size(), "r");
  FUZZ_CHECK(stream != nullptr);
  FUZZ_CHECK(const_cast<FsIniFile &>(document).read(stream) == fskit::ini::kOk);
  bool all = std::ftell(stream) == long(text.size());
  std::fclose(stream);
  return all;
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

FUZZ_TARGET(bytes) {
  const std::string text(bytes);
  Document document(text);
  FUZZ_CHECK(document.text() == text);

  const std::vector<Document::Entry> entries = document.values();
  if (!text.empty()) {
    FsIniFile *classic = FsIniFile::create("fuzz.ini");
    FUZZ_CHECK(classic != nullptr);
    if (classicReadsAll(*classic, text)) {
      for (const Document::Entry &entry : entries) {
        const char *value = classic->valueOf(entry.paragraph.c_str(), entry.topic.c_str());
        FUZZ_CHECK(entry.value ? value != nullptr && *entry.value == value : value == nullptr);
      }
    }
    delete classic;
  }
  if (!entries.empty()) {
    checkSet(text, entries.front().paragraph, entries.front().topic);
    checkSet(text, entries.front().paragraph, "fuzz topic");
  }
  checkSet(text, "fuzz paragraph", "t");
}
