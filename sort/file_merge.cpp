// SPDX-License-Identifier: MIT
// The merge of sorted work files. Each file is read through a buffer that
// grows to hold its longest line, so lines of any length survive; the files'
// current lines are kept in a heap, smallest on top, equal lines taken from
// the lower-numbered file first. Lines are compared as they stand in the
// files, newline and count included, so a line that continues with a byte
// below the newline (a tab, say) comes before the line it extends, and
// "text count" lines order by the whole line.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "sort/sorting.h"

namespace fskit::sort {
namespace {

constexpr size_t kReadBlock = 1 << 17;

class LineReader {
 public:
  explicit LineReader(std::FILE *file)
      : file_(file), buffer_(static_cast<char *>(std::malloc(kReadBlock))) {
    if (buffer_ == nullptr) throw std::bad_alloc();
  }
  ~LineReader() { std::free(buffer_); }
  LineReader(const LineReader &) = delete;
  LineReader &operator=(const LineReader &) = delete;

  // The next line without its newline, valid until the next call; false at
  // the end of the file or on a read error.
  bool next(const char *&line, size_t &length) {
    for (;;) {
      const char *start = buffer_ + begin_;
      if (const void *newline = std::memchr(start, '\n', end_ - begin_)) {
        line = start;
        length = size_t(static_cast<const char *>(newline) - start);
        begin_ += length + 1;
        return true;
      }
      if (ended_) {
        // A last line without newline (never written by the sort itself).
        if (begin_ == end_) return false;
        line = start;
        length = end_ - begin_;
        begin_ = end_;
        return true;
      }
      fill();
    }
  }
  bool failed() const { return failed_; }

 private:
  void fill() {
    std::memmove(buffer_, buffer_ + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
    if (end_ == capacity_) {
      size_t grown = 2 * capacity_;
      char *bigger = static_cast<char *>(std::realloc(buffer_, grown));
      if (bigger == nullptr) throw std::bad_alloc();
      buffer_ = bigger;
      capacity_ = grown;
    }
    size_t got = std::fread(buffer_ + end_, 1, capacity_ - end_, file_);
    end_ += got;
    if (got == 0) {
      ended_ = true;
      failed_ = std::ferror(file_) != 0;
    }
  }

  std::FILE *file_;
  char *buffer_;
  size_t capacity_ = kReadBlock, begin_ = 0, end_ = 0;
  bool ended_ = false, failed_ = false;
};

struct Source {
  long number;
  std::FILE *file = nullptr;
  LineReader *reader = nullptr;
  const char *line = nullptr;  // without its newline
  size_t length = 0;
};

class Merge {
 public:
  Merge(WorkFiles &files, bool collapse) : files_(files), collapse_(collapse) {}
  ~Merge() {
    for (Source &source : sources_) {
      delete source.reader;
      if (source.file != nullptr) files_.close(source.file);
    }
  }

  // Opens the work files; the number of one that cannot be opened, or -1.
  long open(const long *numbers, int count) {
    sources_.reserve(size_t(count));
    for (int k = 0; k < count; ++k) {
      sources_.push_back(Source{numbers[k]});
      char *name = files_.name(numbers[k]);
      if (name == nullptr) throw std::bad_alloc();
      sources_.back().file = files_.open(name, "r");
      std::free(name);
      if (sources_.back().file == nullptr) return numbers[k];
      sources_.back().reader = new LineReader(sources_.back().file);
    }
    return -1;
  }

  long run(std::FILE *out, long *unreadable) {
    LineWriter writer(out);
    for (size_t k = 0; k < sources_.size(); ++k)
      if (advance(sources_[k])) heap_.push_back(k);
    for (size_t k = heap_.size() / 2; k-- > 0;) siftDown(k);
    std::string last;
    bool anyWritten = false;
    long written = 0;
    while (!heap_.empty()) {
      Source &top = sources_[heap_[0]];
      bool repeat = collapse_ && anyWritten && last.size() == top.length &&
                    std::memcmp(last.data(), top.line, top.length) == 0;
      if (!repeat) {
        writer.line(top.line, top.length);
        if (collapse_) last.assign(top.line, top.length);
        anyWritten = true;
        ++written;
      }
      if (!advance(top)) {
        if (top.reader->failed()) {
          *unreadable = top.number;
          return -2;
        }
        heap_[0] = heap_.back();
        heap_.pop_back();
      }
      if (!heap_.empty()) siftDown(0);
    }
    return writer.finish() ? written : -1;
  }

 private:
  bool advance(Source &source) {
    return source.reader->next(source.line, source.length);
  }

  // Two lines byte by byte as unsigned values, each with its newline: where
  // one line ends, its newline meets the other's next byte.
  static int compareLines(const char *a, size_t aLength, const char *b, size_t bLength) {
    int c = std::memcmp(a, b, aLength < bLength ? aLength : bLength);
    if (c != 0 || aLength == bLength) return c;
    return aLength < bLength ? int('\n') - int(static_cast<unsigned char>(b[aLength]))
                             : int(static_cast<unsigned char>(a[bLength])) - int('\n');
  }

  bool less(size_t x, size_t y) const {
    const Source &a = sources_[x], &b = sources_[y];
    int c = compareLines(a.line, a.length, b.line, b.length);
    return c != 0 ? c < 0 : a.number < b.number;
  }

  void siftDown(size_t at) {
    for (;;) {
      size_t smallest = at, left = 2 * at + 1, right = left + 1;
      if (left < heap_.size() && less(heap_[left], heap_[smallest])) smallest = left;
      if (right < heap_.size() && less(heap_[right], heap_[smallest])) smallest = right;
      if (smallest == at) return;
      std::swap(heap_[at], heap_[smallest]);
      at = smallest;
    }
  }

  WorkFiles &files_;
  bool collapse_;
  std::vector<Source> sources_;
  std::vector<size_t> heap_;
};

}  // namespace

long mergeWorkFiles(WorkFiles &files, const long *numbers, int count, std::FILE *out,
                    bool collapse, long *unreadable) {
  Merge merge(files, collapse);
  *unreadable = merge.open(numbers, count);
  if (*unreadable >= 0) return -2;
  return merge.run(out, unreadable);
}

}  // namespace fskit::sort
