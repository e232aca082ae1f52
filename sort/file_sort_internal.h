// SPDX-License-Identifier: MIT
// The file sort as an internal C++ interface, for fskit's own tool and
// Python package (not installed, not exported from the shared library): the
// sort of fsStrSort with its outcome told apart (complete, stopped early,
// failed, and why) and its progress lines sent where the caller says.
#pragma once

#include <cstddef>

namespace fskit::sort {

// Receives each progress line, without its line end; `problem` marks the
// lines that say why the sort is not complete.
using ProgressSink = void (*)(void *context, const char *line, bool problem);

struct FileSortRequest {
  const char *input = nullptr;
  const char *output = nullptr;
  const char *prefix = "";  // of the work files "<prefix>sort_<n>.tmp"
  long bufferSize = 0;      // as fsStrSort's
  bool keepDuplicates = true;
  bool withCounts = false;
  // Null: standard output, each line ending in a line feed (as fsStrSort).
  ProgressSink progress = nullptr;
  void *progressContext = nullptr;
  // Write the output beside it under a temporary name and put it in its
  // place only once the sort is complete: a sort that fails or stops early
  // leaves the old output as it was. Targets that cannot be replaced (a
  // device, a FIFO, a file with other names) are written in place.
  bool replaceOutput = false;
};

enum class FileSortOutcome {
  kComplete,    // every line of the input is in the output
  kIncomplete,  // the sort stopped early: some lines are missing
  kFailed,      // nothing, or nothing trustworthy, was written
};

struct FileSortResult {
  FileSortOutcome outcome = FileSortOutcome::kFailed;
  long lines = 0;         // what fsStrSort returns: the lines written, or 0
  char reason[512] = "";  // why it is not complete (the sort's own words)
};

// Never throws.
FileSortResult sortFile(const FileSortRequest &request);

// A directory of the caller's own for the work files, made inside `parent`
// (mode 0700 where the system has modes): the sort removes every file named
// like one of its work files under the prefix it is given, and none of the
// user's files may be among them. Removed when it goes (once empty).
class WorkDirectory {
 public:
  explicit WorkDirectory(const char *parent);
  ~WorkDirectory();
  WorkDirectory(const WorkDirectory &) = delete;
  WorkDirectory &operator=(const WorkDirectory &) = delete;
  const char *path() const { return path_; }  // null when it could not be made
  int error() const { return error_; }        // errno of that failure

 private:
  char *path_;
  int error_;
};

}  // namespace fskit::sort
