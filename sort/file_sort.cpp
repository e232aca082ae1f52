// SPDX-License-Identifier: MIT
// fsStrSort: the lines of a text file sorted into another file. A file that
// fits into the buffer is sorted in memory; a larger one is cut at line ends
// into chunks, each sorted and written to a work file, and the work files are
// merged, at most kMergeWidth at a time.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <numeric>
#include <vector>

#include <fskit/sort.h>

#include "platform/file_offset.h"
#include "platform/platform.h"
#include "sort/file_sort_internal.h"
#include "sort/sorting.h"

namespace fskit::sort {
namespace {

// Lines are found through 32-bit offsets into the buffer.
constexpr long kLargestBuffer = 0x7fffffffL;
constexpr long kAhead = 8;

using Name = std::unique_ptr<char, decltype(&std::free)>;

// The reason is kept as far as it fits.
void keepReason(FileSortResult &result, const char *text) {
  size_t length = strnlen(text, sizeof result.reason - 1);
  std::memcpy(result.reason, text, length);
  result.reason[length] = '\0';
}

void toStandardOutput(void *, const char *line, bool) {
  std::fputs(line, stdout);
  std::fputc('\n', stdout);
}

class FileSort {
 public:
  FileSort(const FileSortRequest &request, const char *output, FileSortResult &result)
      : input_(request.input != nullptr ? request.input : ""),
        output_(output != nullptr ? output : ""),
        shownOutput_(request.output != nullptr ? request.output : ""),
        collapse_(!request.keepDuplicates),
        counted_(!request.keepDuplicates && request.withCounts),
        progress_(request.progress != nullptr ? request.progress : toStandardOutput),
        progressContext_(request.progressContext),
        result_(result) {}
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
    // In 64 bits: a long is 32 on a 32-bit build, and the input may be larger.
    const long long fileSize = status.st_size;
    const long long wanted = bufferSize <= 0 || bufferSize > fileSize ? fileSize : bufferSize;
    size_ = long(wanted > kLargestBuffer ? kLargestBuffer : wanted);
    while ((buffer_ = static_cast<char *>(std::malloc(size_t(size_ > 0 ? size_ : 1)))) == nullptr) {
      size_ /= 2;
      if (size_ == 0) return noBuffer();
    }
    // A directory opens for reading here, but cannot be read as a file.
    in_ = S_ISDIR(status.st_mode) ? nullptr : std::fopen(input_, "r");
    if (in_ == nullptr) return cannotOpenInput();
    inMemory_ = size_ == fileSize;
    say(inMemory_ ? "Sorting file %s with %lld bytes, in memory %ld"
                  : "Sorting file %s with %lld bytes, %ld bytes at a time",
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

  // A progress line, or (complain) the reason why the sort is not complete.
  __attribute__((format(printf, 2, 3))) void say(const char *format, ...) {
    va_list args;
    va_start(args, format);
    sayList(false, format, args);
    va_end(args);
  }
  __attribute__((format(printf, 2, 3))) void complain(const char *format, ...) {
    va_list args;
    va_start(args, format);
    sayList(true, format, args);
    va_end(args);
  }
  void sayList(bool isReason, const char *format, va_list args) {
    char line[1024];
    va_list copy;
    va_copy(copy, args);
    int length = std::vsnprintf(line, sizeof line, format, args);
    if (length >= 0 && size_t(length) >= sizeof line) {
      // A long file name: the line is made whole on the heap.
      std::unique_ptr<char[]> whole(new (std::nothrow) char[size_t(length) + 1]);
      if (whole != nullptr) {
        std::vsnprintf(whole.get(), size_t(length) + 1, format, copy);
        va_end(copy);
        deliver(isReason, whole.get());
        return;
      }
    }
    va_end(copy);
    deliver(isReason, length >= 0 ? line : "");
  }
  void deliver(bool isReason, const char *line) {
    if (isReason) {
      complained_ = true;
      keepReason(result_, line);
    }
    progress_(progressContext_, line, isReason);
  }

  long cannotOpenInput() {
    complain("Cannot open input file %s", input_);
    return 0;
  }
  long noBuffer() {
    complain("Cannot create sort buffer");
    return 0;
  }
  // Another sort in progress has the same prefix: nothing of it is touched.
  long inUse() {
    complain("Work files %ssort_*.tmp are in use by another sort", files_.prefix());
    return 0;
  }
  long failed() {
    files_.finish();
    return 0;
  }
  long finished(long count) {
    say("%ld records written", count);
    files_.finish();
    if (stoppedEarly_)
      result_.outcome = FileSortOutcome::kIncomplete;
    else if (!complained_)
      result_.outcome = FileSortOutcome::kComplete;
    return count;
  }

  Name nameOf(long number) const {
    Name name(files_.name(number), &std::free);
    if (name == nullptr) throw std::bad_alloc();
    return name;
  }

  ChunkEnd sortChunks() {
    while (!std::feof(in_)) {
      const platform::FileOffset start = platform::tellFile(in_);
      size_t got = std::fread(buffer_, 1, size_t(size_), in_);
      if (std::ferror(in_)) {
        complain("Error reading input file");
        return ChunkEnd::Failed;
      }
      if (got == 0) break;
      size_t bytes = got;
      while (bytes > 0 && buffer_[bytes - 1] != '\n') --bytes;
      // No line end at all: a line longer than the buffer ends the sort.
      if (bytes == 0) {
        stoppedEarly_ = true;
        std::snprintf(result_.reason, sizeof result_.reason,
                      "a line longer than the sort buffer (%ld bytes) at byte %lld of %s: "
                      "the lines from there on are not sorted",
                      size_, static_cast<long long>(start), input_);
        break;
      }
      // A Windows text stream over a file with LF-only line ends can seek
      // back to where the chunk began; the sort would then never end.
      if (bytes < got &&
          (platform::seekFile(in_, -platform::FileOffset(got - bytes), SEEK_CUR) != 0 ||
           platform::tellFile(in_) <= start)) {
        complain("Error seeking in input file");
        return ChunkEnd::Stopped;
      }
      long records = 0;
      for (const char *p = buffer_, *end = buffer_ + bytes;
           (p = static_cast<const char *>(std::memchr(p, '\n', size_t(end - p)))) != nullptr; ++p)
        ++records;
      std::free(index_);
      index_ = static_cast<int32_t *>(std::malloc(size_t(records + 1) * sizeof(int32_t)));
      if (index_ == nullptr) {
        complain("Cannot allocate index for %ld records", records);
        return ChunkEnd::Failed;
      }
      say("Indexing %ld records of %ld bytes ...", records, long(bytes));
      index_[0] = 0;
      long line = 0;
      for (char *p = buffer_, *end = buffer_ + bytes;
           (p = static_cast<char *>(std::memchr(p, '\n', size_t(end - p)))) != nullptr;) {
        *p++ = '\0';
        index_[++line] = int32_t(p - buffer_);
      }
      say("Sorting %ld records ...", records);
      // The lines lie in the buffer: the sort may read words across their ends.
      const auto *text = reinterpret_cast<const unsigned char *>(buffer_);
      KeyLayout layout{text, 1, 0, kUnbounded, text + bytes};
      if (records > 1 && !sortIndexText(FS_SORT_STRING, layout, index_, size_t(records)))
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
    say("Writing output file %s ...", inMemory_ ? shownOutput_ : name);
    std::FILE *file = files_.open(name, "w+");
    if (file == nullptr) {
      complain("Cannot open file %s", inMemory_ ? shownOutput_ : name);
      return ChunkEnd::Stopped;
    }
    long lines = writeLines(file, records);
    bool closed = files_.close(file);
    if (lines < 0 || !closed) {
      complain("Error writing output file");
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
      say("Merging %d work files ...", kMergeWidth);
      Name name = nameOf(next);
      files_.useNames(next + 1);
      std::FILE *file = files_.open(name.get(), "w");
      if (file == nullptr) {
        complain("Cannot open file %s", name.get());
        return finished(0);
      }
      long result = merge(pending.data(), kMergeWidth, file);
      if (result < 0) return failed();
      for (int k = 0; k < kMergeWidth; ++k) std::remove(nameOf(pending[size_t(k)]).get());
      pending.erase(pending.begin(), pending.begin() + kMergeWidth);
      pending.push_back(next++);
    }
    say("Merging %d work files ...", int(pending.size()));
    std::FILE *out = files_.open(output_, "w");
    if (out == nullptr) {
      complain("Cannot open output file %s", shownOutput_);
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
      complain("Error reading work file %s", nameOf(unreadable).get());
      return -1;
    }
    if (lines < 0 || !closed) {
      complain("Error writing output file");
      return -1;
    }
    return lines;
  }

  const char *input_;
  const char *output_;       // where the output is written
  const char *shownOutput_;  // its name in messages: the caller's
  bool collapse_, counted_;
  bool inMemory_ = false;
  long size_ = 0;
  char *buffer_ = nullptr;
  int32_t *index_ = nullptr;
  std::FILE *in_ = nullptr;
  long written_ = 0;
  long workFileCount_ = 0;
  bool stoppedEarly_ = false;  // a line longer than the buffer ended the chunks
  bool complained_ = false;    // something went wrong, and was said
  ProgressSink progress_;
  void *progressContext_;
  FileSortResult &result_;
  WorkFiles files_;
};

// Runs the sort into `output`; bad_alloc ends it as a failure.
void runInto(const FileSortRequest &request, const char *output, FileSortResult &result) {
  try {
    result.lines = FileSort(request, output, result).run(request.prefix, request.bufferSize);
  } catch (const std::bad_alloc &) {
    // The sort's work files went with it.
    const char *reason = "Cannot create sort buffer";
    keepReason(result, reason);
    (request.progress != nullptr ? request.progress : toStandardOutput)(request.progressContext,
                                                                       reason, true);
    result.outcome = FileSortOutcome::kFailed;
    result.lines = 0;
  }
}

}  // namespace

FileSortResult sortFile(const FileSortRequest &request) {
  FileSortResult result;
  if (!request.replaceOutput || request.output == nullptr) {
    runInto(request, request.output, result);
    return result;
  }
  platform::Replacement replacement;
  int fd = -1;
  switch (platform::beginReplacement(request.output, replacement, fd)) {
    case platform::ReplaceStart::kNotReplaceable:
      runInto(request, request.output, result);
      return result;
    case platform::ReplaceStart::kFailed:
      std::snprintf(result.reason, sizeof result.reason,
                    "cannot make a temporary file beside %s", request.output);
      return result;
    case platform::ReplaceStart::kReady:
      break;
  }
  close(fd);  // the sort opens the temporary file by its name
  runInto(request, replacement.temporary, result);
  if (result.outcome != FileSortOutcome::kComplete) {
    platform::abandonReplacement(replacement);
  } else if (platform::commitReplacement(replacement) != 0) {
    std::snprintf(result.reason, sizeof result.reason, "cannot put the sorted file in place of %s",
                  request.output);
    result.outcome = FileSortOutcome::kFailed;
  }
  return result;
}

}  // namespace fskit::sort

extern "C" {

FSKIT_API long fsStrSort(const char *input, const char *output, const char *prefix,
                         long bufferSize, uint8_t keepDuplicates, uint8_t withCounts) {
  fskit::sort::FileSortRequest request;
  request.input = input;
  request.output = output;
  request.prefix = prefix;
  request.bufferSize = bufferSize;
  request.keepDuplicates = keepDuplicates != 0;
  request.withCounts = withCounts != 0;
  return fskit::sort::sortFile(request).lines;
}

}  // extern "C"
