// SPDX-License-Identifier: MIT
// fskit ls: the records of a directory listing.
#include <dirent.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

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
  // A text the listing could not copy is null; it prints as nothing.
  auto text = [](const char *part) { return part != nullptr ? part : ""; };
  for (int32_t i = 0; i < count; ++i)
    std::printf("%s\t%s\t%s\t%s\n", text(list[i].name), text(list[i].extension),
                text(list[i].directory), text(list[i].drive));
  fsReadDirFree(count, &list);
  if (count > 0) return kOk;
  // Nothing listed: no match is not an error, a directory that cannot be read
  // is. The library reads a backslash as '/' and "" as the current directory.
  std::string directory = args[0].empty() ? "." : args[0];
  for (char &c : directory)
    if (c == '\\') c = '/';
  DIR *opened = opendir(directory.c_str());
  if (opened == nullptr)
    return failure("ls", "cannot read directory " + args[0] + ": " + std::strerror(errno));
  closedir(opened);
  return kOk;
}

}  // namespace fskit::tool
