// SPDX-License-Identifier: MIT
// fskit sort: the library's external sort of a text file's lines.
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

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

// The library's progress lines go to standard error, as all but the sorted
// lines do; what went wrong is said once, at the end.
void toStandardError(void *, const char *line, bool problem) {
  if (!problem) std::fprintf(stderr, "%s\n", line);
}

// A file of the tool's own in the work directory, removed with it; an empty
// path is no file.
struct TemporaryFile {
  explicit TemporaryFile(std::string name) : path(std::move(name)) {}
  ~TemporaryFile() {
    if (!path.empty()) std::remove(path.c_str());
  }
  TemporaryFile(const TemporaryFile &) = delete;
  TemporaryFile &operator=(const TemporaryFile &) = delete;
  std::string path;
};

// 0 when `path` can be opened for reading as a file, else the system's
// error number (EISDIR for a directory, which fopen would open).
int unreadable(const std::string &path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  std::FILE *stream = std::fopen(path.c_str(), "rb");
  if (stream == nullptr) return errno;
  std::fclose(stream);
  return 0;
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
  sort::WorkDirectory work(parent.c_str());
  if (work.path() == nullptr)
    return failure("sort", "cannot make a work directory in " + parent + ": " +
                               std::strerror(work.error()));
  std::string workPrefix = std::string(work.path()) + "/" + prefix.value_or("");
  // "-": standard input is first copied to a file in the work directory, and
  // the sort of standard output goes to one there, copied out when complete.
  // Their names are not like the library's work files ("...sort_N.tmp").
  bool fromStdin = args[0] == "-", toStdout = args[1] == "-";
  TemporaryFile input(fromStdin ? std::string(work.path()) + "/standard-input" : "");
  TemporaryFile output(toStdout ? std::string(work.path()) + "/standard-output" : "");
  if (fromStdin) {
    // Text mode on both sides: the sort reads a text file of the platform.
    std::FILE *stream = std::fopen(input.path.c_str(), "w");
    if (stream == nullptr) return systemFailure("sort", "cannot copy standard input", errno);
    bool copied = copyStream(stdin, stream);
    int error = errno;
    if (std::fclose(stream) != 0 || !copied)
      return systemFailure("sort", "cannot copy standard input", copied ? errno : error);
  } else if (int error = unreadable(args[0]); error != 0) {
    return systemFailure("sort", "cannot open input file " + args[0], error);
  }
  std::string inputPath = fromStdin ? input.path : args[0];
  std::string outputPath = toStdout ? output.path : args[1];

  sort::FileSortRequest request;
  request.input = inputPath.c_str();
  request.output = outputPath.c_str();
  request.prefix = workPrefix.c_str();
  request.bufferSize = bufferSize;
  request.keepDuplicates = !(unique || count);
  request.withCounts = count;
  request.progress = toStandardError;
  request.replaceOutput = true;
  sort::FileSortResult result = sort::sortFile(request);
  switch (result.outcome) {
    case sort::FileSortOutcome::kComplete:
      if (toStdout) {
        // Read as the text file the sort wrote, as standard output is text.
        std::FILE *stream = std::fopen(output.path.c_str(), "r");
        bool copied = stream != nullptr && copyStream(stream, stdout);
        int error = errno;
        if (stream != nullptr) std::fclose(stream);
        if (!copied) return systemFailure("sort", "cannot write standard output", error);
      }
      return kOk;
    case sort::FileSortOutcome::kIncomplete:
      return failure("sort", std::string("stopped early, ") +
                                 (toStdout ? std::string("nothing written") : args[1] + " left as it was") + ": " +
                                 result.reason);
    case sort::FileSortOutcome::kFailed: break;
  }
  return failure("sort", result.reason[0] != '\0' ? result.reason : "the sort failed");
}

}  // namespace fskit::tool
