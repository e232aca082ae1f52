// fskit sort: the library's external sort of a text file's lines.
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fskit/sort.h>

#include "tools/command.h"

namespace fskit::tool {

int runSort(std::vector<std::string> &args) {
  bool missingValue = false;
  std::optional<std::string> prefix = takeOption(args, "--prefix", missingValue);
  std::optional<std::string> buffer = takeOption(args, "--buffer", missingValue);
  bool unique = takeFlag(args, "--unique");
  bool count = takeFlag(args, "--count");
  if (missingValue) return usageError("sort", "--prefix and --buffer need a value");
  if (auto option = unknownOption(args)) return usageError("sort", "unknown option " + *option);
  std::erase(args, std::string("--"));
  if (args.size() != 2) return usageError("sort", "needs INPUT and OUTPUT");
  long bufferSize = 0;
  if (buffer) {
    char *end = nullptr;
    errno = 0;
    bufferSize = std::strtol(buffer->c_str(), &end, 10);
    if (buffer->empty() || *end != '\0' || errno != 0 || bufferSize < 0)
      return usageError("sort", "--buffer needs a number of bytes");
  }
  long lines = fsStrSort(args[0].c_str(), args[1].c_str(), prefix.value_or("").c_str(),
                         bufferSize, !(unique || count), count);
  std::fflush(stdout);
  return lines > 0 ? kOk : failure("sort", "no lines written");
}

}  // namespace fskit::tool
