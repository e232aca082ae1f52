// fskit ls: the records of a directory listing.
#include <cstdio>

#include <fskit/files.h>

#include "tools/command.h"

namespace fskit::tool {

int runLs(std::vector<std::string> &args) {
  if (auto unknown = unknownOption(args)) return usageError("ls", "unknown option " + *unknown);
  if (!args.empty() && args.front() == "--") args.erase(args.begin());
  if (args.empty() || args.size() > 3)
    return usageError("ls", "give a directory and at most two patterns");
  const char *namePattern = args.size() > 1 ? args[1].c_str() : "*";
  const char *extPattern = args.size() > 2 ? args[2].c_str() : nullptr;
  FsFileSpec *list = nullptr;
  int32_t count = fsReadDir(args[0].c_str(), namePattern, extPattern, &list);
  for (int32_t i = 0; i < count; ++i)
    std::printf("%s\t%s\t%s\t%s\n", list[i].name, list[i].extension, list[i].directory,
                list[i].drive);
  fsReadDirFree(count, &list);
  return kOk;
}

}  // namespace fskit::tool
