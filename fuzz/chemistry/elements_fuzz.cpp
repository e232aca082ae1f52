// SPDX-License-Identifier: MIT
// The element-file reader on any file: the record count is the one the line rules give, every
// record can be fetched, and every label finds the first record that carries it.
#include <fskit/chemistry.h>
#include <fskit/frame.h>
#include <fskit/strings.h>

#include <unordered_map>

#include "fuzz/support/fuzz_support.h"

namespace {

// The record count: a line is at most 131 characters; an element line (first field in column 0
// or 1) adds two records, an isotope line after an element one; 500 records give -1.
int32_t expectedCount(std::string_view file) {
  int32_t count = 0;
  bool element = false;
  for (size_t at = 0; at < file.size();) {
    const size_t newline = file.find('\n', at);
    const size_t end = std::min(newline == std::string_view::npos ? file.size() : newline + 1, at + 131);
    const Text piece(file.substr(at, end - at));
    at = end;
    char *start;
    int32_t length;
    if (strqtoks(piece.get(), " \t\r\n", 1, &start, &length) < 1) continue;
    const std::string_view first(start, size_t(length));
    if (first == "Element" || first == "Atomic") continue;
    if (start - piece.get() <= 1) {
      if (count + 2 > 500) return -1;
      count += 2;
      element = true;
    } else if (element) {
      count += 1;
    }
    if (count >= 500) return -1;
  }
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  fsRegisterMessage(nullptr);  // the lookups' reports are expected here
  return 0;
}

FUZZ_TARGET(file) {
  writeBytes(scratchFile("elements.tbl"), file);
  FUZZ_CHECK(fsInitElemTable(0, 0) == 1);  // forgets the table and the name it came from
  FUZZ_CHECK(fsLoadElemTable(scratchFile("elements.tbl").c_str()) == 1);

  const int32_t count = fsElementTableCount();
  FUZZ_CHECK(count == expectedCount(file));
  std::unordered_map<std::string, int32_t> firstOfLabel;
  for (int32_t i = 0; i < count; ++i) {
    FsElementRecord record, found;
    FUZZ_CHECK(fsGetElementInfo(i, &record) == 1);
    FUZZ_CHECK(std::memchr(record.symbol, '\0', sizeof record.symbol) != nullptr);
    char symbol[4];
    FUZZ_CHECK(fsGetElemSymbol(i, symbol) == 1 && std::strcmp(symbol, record.symbol) == 0);
    const std::string label(record.label, strnlen(record.label, sizeof record.label));
    const int32_t first = firstOfLabel.try_emplace(label, i).first->second;
    FUZZ_CHECK(fsFindElemInTbl(label.c_str()) == first);
    FUZZ_CHECK(fsFindElement(label.c_str(), &found) == first);
    if (first == i) FUZZ_CHECK(std::memcmp(&found, &record, sizeof record) == 0);
    FUZZ_CHECK(fsFindElement((label + "123456789").c_str(), &found) == -1);  // longer than any label
  }
  FsElementRecord record;
  FUZZ_CHECK(fsGetElementInfo(count, &record) == 0 && fsGetElementInfo(-1, &record) == 0);
}
