// SPDX-License-Identifier: MIT
// kwaReadTags on any file (first byte odd: keywords): records well formed, written back read alike.
#include <fskit/cmdline.h>

#include "fuzz/support/fuzz_support.h"

namespace {

struct Table {
  int32_t count = 0, capacity = 0;
  KwaTagEntry *entries = nullptr;
  ~Table() { std::free(entries); }
};

void read(std::string_view file, int32_t mode, Table &table) {
  // fmemopen cannot open an empty buffer for reading; an empty file adds nothing.
  std::string bytes(file);
  if (bytes.empty()) return;
  std::FILE *stream = fmemopen(bytes.data(), bytes.size(), "r");
  FUZZ_CHECK(stream != nullptr);
  FUZZ_CHECK(kwaReadTags(stream, mode, &table.count, &table.capacity, &table.entries) == 1);
  std::fclose(stream);
}

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

FUZZ_TARGET(input) {
  const bool keywords = takeByte(input) % 2 == 1;
  Table table;
  read(input, keywords ? 1 : 0, table);
  FUZZ_CHECK(table.count >= 0 && table.count <= table.capacity && table.capacity % 10 == 0);
  FUZZ_CHECK((table.entries == nullptr) == (table.capacity == 0));
  for (int32_t i = 0; i < table.count; ++i) {
    const KwaTagEntry &entry = table.entries[i];
    const std::string_view tag(entry.tag, strnlen(entry.tag, sizeof entry.tag));
    const std::string_view label(entry.label, strnlen(entry.label, sizeof entry.label));
    FUZZ_CHECK(!tag.empty() && tag.size() <= 63 && !label.empty() && label.size() <= 63);
    FUZZ_CHECK(entry.labelLen == int32_t(label.size()));
    for (char c : tag) FUZZ_CHECK(!isSpace(c) && c != '!' && !(c >= 'a' && c <= 'z'));
    // Single blanks inside, none at the ends unless the cut to 63 characters left one.
    FUZZ_CHECK(label.front() != ' ' && label.find("  ") == std::string_view::npos);
    FUZZ_CHECK(label.back() != ' ' || label.size() == 63);
    for (char c : label) FUZZ_CHECK(c == ' ' || (!isSpace(c) && c != '!'));
    if (keywords)
      FUZZ_CHECK(label.starts_with("##") && label.ends_with("=") && label.size() >= 4);
  }

  // A label cut just after a blank would lose it when read again.
  std::string file;
  for (int32_t i = 0; i < table.count; ++i) {
    if (table.entries[i].label[62] == ' ') return;
    file += std::string(table.entries[i].tag) + " " + table.entries[i].label + "\n";
  }
  Table again;
  read(file, 0, again);
  FUZZ_CHECK(again.count == table.count);
  for (int32_t i = 0; i < table.count; ++i)
    FUZZ_CHECK(std::memcmp(&again.entries[i], &table.entries[i], sizeof(KwaTagEntry)) == 0);
}
