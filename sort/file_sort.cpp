// fsStrSort: the lines of a text file sorted into another file. A file that
// fits into the buffer is sorted in memory; a larger one is cut at line ends
// into chunks, each sorted and written to a work file, and the work files are
// merged, at most kMergeWidth at a time.
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <numeric>
#include <vector>

#include <fskit/sort.h>

#include "platform/platform.h"
#include "sort/sorting.h"

namespace fskit::sort {
namespace {

// Lines are found through 32-bit offsets into the buffer.
constexpr long kLargestBuffer = 0x7fffffffL;
constexpr long kAhead = 8;

using Name = std::unique_ptr<char, decltype(&std::free)>;

class FileSort {
 public:
  FileSort(const char *input, const char *output, bool keepDuplicates, bool withCounts)
      : input_(input != nullptr ? input : ""),
        output_(output != nullptr ? output : ""),
        collapse_(!keepDuplicates),
        counted_(!keepDuplicates && withCounts) {}
  ~FileSort() {
    if (in_ != nullptr) std::fclose(in_);
    std::free(buffer_);
    std::free(index_);
  }
  FileSort(const FileSort &) = delete;
  FileSort &operator=(const FileSort &) = delete;

  long run(const char *prefix, long bufferSize) {
    switch (files_.start(prefix)) {
      case WorkFiles::Start::kNoMemory: return noBuffer();
      case WorkFiles::Start::kInUse: return inUse();
      case WorkFiles::Start::kReady: break;
    }
    struct stat status;
    if (platform::_stat(input_, &status) != 0) return cannotOpenInput();
    long fileSize = long(status.st_size);
    size_ = bufferSize <= 0 || bufferSize > fileSize ? fileSize : bufferSize;
    if (size_ > kLargestBuffer) size_ = kLargestBuffer;
    while ((buffer_ = static_cast<char *>(std::malloc(size_t(size_ > 0 ? size_ : 1)))) == nullptr) {
      size_ /= 2;
      if (size_ == 0) return noBuffer();
    }
    // A directory opens for reading here, but cannot be read as a file.
    in_ = S_ISDIR(status.st_mode) ? nullptr : std::fopen(input_, "r");
    if (in_ == nullptr) return cannotOpenInput();
    inMemory_ = size_ == fileSize;
    std::printf(inMemory_ ? "Sorting file %s with %ld bytes, in memory %ld\n"
                          : "Sorting file %s with %ld bytes, %ld bytes at a time\n",
                input_, fileSize, size_);

    switch (sortChunks()) {
      case ChunkEnd::Failed: return failed();
      case ChunkEnd::Stopped: return finished(0);
      case ChunkEnd::Input: break;
    }
    std::fclose(in_);
    in_ = nullptr;
    std::free(index_);
    index_ = nullptr;
    std::free(buffer_);
    buffer_ = nullptr;
    return inMemory_ ? finished(written_) : mergeAll();
  }

 private:
  enum class ChunkEnd { Input, Stopped, Failed };

  long cannotOpenInput() {
    std::printf("Cannot open input file %s\n", input_);
    return 0;
  }
  long noBuffer() {
    std::printf("Cannot create sort buffer\n");
    return 0;
  }
  // Another sort in progress has the same prefix: nothing of it is touched.
  long inUse() {
    std::printf("Work files %ssort_*.tmp are in use by another sort\n", files_.prefix());
    return 0;
  }
  long failed() {
    files_.finish();
    return 0;
  }
  long finished(long count) {
    std::printf("%ld records written\n", count);
    files_.finish();
    return count;
  }

  Name nameOf(long number) const {
    Name name(files_.name(number), &std::free);
    if (name == nullptr) throw std::bad_alloc();
    return name;
  }

  ChunkEnd sortChunks() {
    while (!std::feof(in_)) {
      const long start = std::ftell(in_);
      size_t got = std::fread(buffer_, 1, size_t(size_), in_);
      if (std::ferror(in_)) {
        std::printf("Error reading input file\n");
        return ChunkEnd::Failed;
      }
      if (got == 0) break;
      size_t bytes = got;
      while (bytes > 0 && buffer_[bytes - 1] != '\n') --bytes;
      // No line end at all: a line longer than the buffer ends the sort.
      if (bytes == 0) break;
      // A Windows text stream over a file with LF-only line ends can seek
      // back to where the chunk began; the sort would then never end.
      if (bytes < got &&
          (std::fseek(in_, -long(got - bytes), SEEK_CUR) != 0 || std::ftell(in_) <= start)) {
        std::printf("Error seeking in input file\n");
        return ChunkEnd::Stopped;
      }
      long records = 0;
      for (const char *p = buffer_, *end = buffer_ + bytes;
           (p = static_cast<const char *>(std::memchr(p, '\n', size_t(end - p)))) != nullptr; ++p)
        ++records;
      std::free(index_);
      index_ = static_cast<int32_t *>(std::malloc(size_t(records + 1) * sizeof(int32_t)));
      if (index_ == nullptr) {
        std::printf("Cannot allocate index for %ld records\n", records);
        return ChunkEnd::Failed;
      }
      std::printf("Indexing %ld records of %ld bytes ...\n", records, long(bytes));
      index_[0] = 0;
      long line = 0;
      for (char *p = buffer_, *end = buffer_ + bytes;
           (p = static_cast<char *>(std::memchr(p, '\n', size_t(end - p)))) != nullptr;) {
        *p++ = '\0';
        index_[++line] = int32_t(p - buffer_);
      }
      std::printf("Sorting %ld records ...\n", records);
      fsSortIndex(FS_SORT_STRING, 0, 1, int(records), buffer_, index_);
      ChunkEnd end = writeChunk(records);
      if (end != ChunkEnd::Input) return end;
    }
    return ChunkEnd::Input;
  }

  ChunkEnd writeChunk(long records) {
    Name workName(nullptr, &std::free);
    const char *name = output_;
    if (!inMemory_) {
      workName = nameOf(workFileCount_);
      name = workName.get();
      files_.useNames(workFileCount_ + 1);
    }
    std::printf("Writing output file %s ...\n", name);
    std::FILE *file = files_.open(name, "w+");
    if (file == nullptr) {
      std::printf("Cannot open file %s\n", name);
      return ChunkEnd::Stopped;
    }
    long lines = writeLines(file, records);
    bool closed = files_.close(file);
    if (lines < 0 || !closed) {
      std::printf("Error writing output file\n");
      return ChunkEnd::Failed;
    }
    written_ += lines;
    if (!inMemory_) ++workFileCount_;
    return ChunkEnd::Input;
  }

  // Writes the chunk's lines in sorted order; the number written, or -1.
  long writeLines(std::FILE *file, long records) {
    LineWriter out(file);
    long written = 0;
    // The lines are read in sorted order, all over the buffer: ask for a
    // later one now, so the misses overlap.
    auto line = [this, records](long k) {
      if (k + kAhead < records) __builtin_prefetch(buffer_ + index_[k + kAhead]);
      return buffer_ + index_[k];
    };
    if (!collapse_) {
      for (long k = 0; k < records; ++k) {
        const char *text = line(k);
        out.line(text, std::strlen(text));
      }
      written = records;
    } else {
      // Equal lines are neighbours now; an empty line is never written.
      const char *held = "";
      size_t heldLength = 0;
      long count = 0;
      auto writeHeld = [&] {
        if (heldLength == 0) return;
        counted_ ? out.countedLine(held, heldLength, count) : out.line(held, heldLength);
        ++written;
      };
      for (long k = 0; k < records; ++k) {
        const char *text = line(k);
        size_t length = std::strlen(text);
        if (length == heldLength && std::memcmp(text, held, length) == 0) {
          ++count;
          continue;
        }
        writeHeld();
        held = text;
        heldLength = length;
        count = 1;
      }
      writeHeld();
    }
    return out.finish() ? written : -1;
  }

  long mergeAll() {
    std::vector<long> pending(static_cast<size_t>(workFileCount_));
    std::iota(pending.begin(), pending.end(), 0L);
    long next = workFileCount_;
    // Too many work files for one merge: merge the oldest into a new one.
    while (pending.size() > size_t(kMergeWidth)) {
      std::printf("Merging %d work files ...\n", kMergeWidth);
      Name name = nameOf(next);
      files_.useNames(next + 1);
      std::FILE *file = files_.open(name.get(), "w");
      if (file == nullptr) {
        std::printf("Cannot open file %s\n", name.get());
        return finished(0);
      }
      long result = merge(pending.data(), kMergeWidth, file);
      if (result < 0) return failed();
      for (int k = 0; k < kMergeWidth; ++k) std::remove(nameOf(pending[size_t(k)]).get());
      pending.erase(pending.begin(), pending.begin() + kMergeWidth);
      pending.push_back(next++);
    }
    std::printf("Merging %d work files ...\n", int(pending.size()));
    std::FILE *out = files_.open(output_, "w");
    if (out == nullptr) {
      std::printf("Cannot open output file %s\n", output_);
      return finished(0);
    }
    long lines = merge(pending.data(), int(pending.size()), out);
    return lines < 0 ? failed() : finished(lines);
  }

  // Merges work files into `file` and closes it; the lines written, or -1
  // after printing what failed.
  long merge(const long *numbers, int count, std::FILE *file) {
    long unreadable = -1;
    long lines = mergeWorkFiles(files_, numbers, count, file, collapse_, &unreadable);
    bool closed = files_.close(file);
    if (lines == -2) {
      std::printf("Error reading work file %s\n", nameOf(unreadable).get());
      return -1;
    }
    if (lines < 0 || !closed) {
      std::printf("Error writing output file\n");
      return -1;
    }
    return lines;
  }

  const char *input_;
  const char *output_;
  bool collapse_, counted_;
  bool inMemory_ = false;
  long size_ = 0;
  char *buffer_ = nullptr;
  int32_t *index_ = nullptr;
  std::FILE *in_ = nullptr;
  long written_ = 0;
  long workFileCount_ = 0;
  WorkFiles files_;
};

}  // namespace
}  // namespace fskit::sort

extern "C" {

FSKIT_API long fsStrSort(const char *input, const char *output, const char *prefix,
                         long bufferSize, uint8_t keepDuplicates, uint8_t withCounts) {
  try {
    return fskit::sort::FileSort(input, output, keepDuplicates != 0, withCounts != 0)
        .run(prefix, bufferSize);
  } catch (const std::bad_alloc &) {
    // The sort's work files went with it.
    std::printf("Cannot create sort buffer\n");
    return 0;
  }
}

}  // extern "C"
