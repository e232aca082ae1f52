// SPDX-License-Identifier: MIT
// fskit sort: the library's external sort of a text file's lines.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"
#include "sort/file_sort_internal.h"
#include "tools/command.h"

namespace fskit::tool {
namespace {

// Where the private work directory is made: $TMPDIR (TEMP on Windows), else
// the system's temporary directory.
std::string temporaryBase() {
#if defined(_WIN32)
  const char *names[] = {"TEMP", "TMP"};
  const char *fallback = ".";
#else
  const char *names[] = {"TMPDIR"};
  const char *fallback = "/tmp";
#endif
  for (const char *name : names)
    if (const char *value = std::getenv(name); value != nullptr && *value != '\0') return value;
  return fallback;
}

// A directory of the tool's own for the work files: the library removes
// every file named like one of its work files under the prefix it is given,
// and none of the user's files may be among them. Removed when done.
class WorkDirectory {
 public:
  explicit WorkDirectory(const std::string &parent)
      : path_(platform::makePrivateDirectory(parent.c_str())), error_(errno) {}
  ~WorkDirectory() {
    if (path_ != nullptr) platform::_rmdirS(path_);
    std::free(path_);
  }
  WorkDirectory(const WorkDirectory &) = delete;
  WorkDirectory &operator=(const WorkDirectory &) = delete;
  const char *path() const { return path_; }
  int error() const { return error_; }

 private:
  char *path_;
  int error_;
};

// The library's progress lines go to standard error, as all but the sorted
// lines do; what went wrong is said once, at the end.
void toStandardError(void *, const char *line, bool problem) {
  if (!problem) std::fprintf(stderr, "%s\n", line);
}

}  // namespace

int runSort(std::vector<std::string> &args) {
  bool missingValue = false;
  std::optional<std::string> prefix = takeOption(args, "--prefix", missingValue);
  std::optional<std::string> buffer = takeOption(args, "--buffer", missingValue);
  std::optional<std::string> temporary = takeOption(args, "--temporary-directory", missingValue);
  bool unique = takeFlag(args, "--unique");
  bool count = takeFlag(args, "--count");
  if (missingValue)
    return usageError("sort", "--prefix, --buffer and --temporary-directory need a value");
  if (auto option = unknownOption(args)) return usageError("sort", "unknown option " + *option);
  std::erase(args, std::string("--"));
  if (args.size() != 2) return usageError("sort", "needs INPUT and OUTPUT");
  if (prefix && prefix->find_first_of("/\\") != std::string::npos)
    return usageError("sort", "--prefix is a name prefix inside the work directory; "
                              "choose the directory with --temporary-directory");
  long bufferSize = 0;
  if (buffer) {
    char *end = nullptr;
    errno = 0;
    bufferSize = std::strtol(buffer->c_str(), &end, 10);
    if (buffer->empty() || *end != '\0' || errno != 0 || bufferSize < 0)
      return usageError("sort", "--buffer needs a number of bytes");
  }
  std::string parent = temporary.value_or(temporaryBase());
  WorkDirectory work(parent);
  if (work.path() == nullptr)
    return failure("sort", "cannot make a work directory in " + parent + ": " +
                               std::strerror(work.error()));
  std::string workPrefix = std::string(work.path()) + "/" + prefix.value_or("");

  sort::FileSortRequest request;
  request.input = args[0].c_str();
  request.output = args[1].c_str();
  request.prefix = workPrefix.c_str();
  request.bufferSize = bufferSize;
  request.keepDuplicates = !(unique || count);
  request.withCounts = count;
  request.progress = toStandardError;
  request.replaceOutput = true;
  sort::FileSortResult result = sort::sortFile(request);
  switch (result.outcome) {
    case sort::FileSortOutcome::kComplete: return kOk;
    case sort::FileSortOutcome::kIncomplete:
      return failure("sort", std::string("stopped early, ") + args[1] + " left as it was: " +
                                 result.reason);
    case sort::FileSortOutcome::kFailed: break;
  }
  return failure("sort", result.reason[0] != '\0' ? result.reason : "the sort failed");
}

}  // namespace fskit::tool
