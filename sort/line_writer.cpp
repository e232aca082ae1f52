// SPDX-License-Identifier: MIT
// Output of the file sort: lines gathered in a large buffer and written in
// blocks, which spares a formatted call per line.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "sort/sorting.h"

namespace fskit::sort {

namespace {
constexpr size_t kBlock = 1 << 20;
}

LineWriter::LineWriter(std::FILE *file)
    : file_(file), buffer_(static_cast<char *>(std::malloc(kBlock))) {
  if (buffer_ == nullptr) throw std::bad_alloc();
}

LineWriter::~LineWriter() { std::free(buffer_); }

void LineWriter::put(const char *bytes, size_t length) {
  if (failed_) return;
  if (length > kBlock - used_) {
    failed_ = std::fwrite(buffer_, 1, used_, file_) != used_;
    used_ = 0;
    if (length >= kBlock) {
      failed_ = failed_ || std::fwrite(bytes, 1, length, file_) != length;
      return;
    }
  }
  std::memcpy(buffer_ + used_, bytes, length);
  used_ += length;
}

void LineWriter::line(const char *text, size_t length) {
  put(text, length);
  put("\n", 1);
}

void LineWriter::countedLine(const char *text, size_t length, long count) {
  char suffix[32];
  int suffixLength = std::snprintf(suffix, sizeof suffix, " %ld\n", count);
  put(text, length);
  put(suffix, size_t(suffixLength));
}

bool LineWriter::finish() {
  if (!failed_ && used_ > 0) failed_ = std::fwrite(buffer_, 1, used_, file_) != used_;
  used_ = 0;
  return !failed_ && std::fflush(file_) == 0;
}

}  // namespace fskit::sort
