// SPDX-License-Identifier: MIT
// fskit ls: the records of a directory listing.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <fskit/files.h>

#include "tools/command.h"

namespace fskit::tool {

int runLs(std::vector<std::string> &args) {
  bool json = takeFlag(args, "--json");
  if (auto unknown = unknownOption(args)) return usageError("ls", "unknown option " + *unknown);
  if (!args.empty() && args.front() == "--") args.erase(args.begin());
  if (args.empty() || args.size() > 3)
    return usageError("ls", "give a directory and at most two patterns");
  const char *namePattern = args.size() > 1 ? args[1].c_str() : "*";
  const char *extPattern = args.size() > 2 ? args[2].c_str() : nullptr;
  FsFileSpec *list = nullptr;
  int32_t count = fsReadDir(args[0].c_str(), namePattern, extPattern, &list);
  // The library reads a backslash as '/' and "" as the current directory.
  std::string directory = args[0];
  for (char &c : directory)
    if (c == '\\') c = '/';
  // Each name as a path the way the user wrote the directory, a directory's
  // with a trailing '/'; sorted by name, byte by byte.
  std::string prefix = args[0];
  if (!prefix.empty() && prefix.back() != '/' && prefix.back() != '\\') prefix += '/';
  struct Entry {
    std::string fileName, name, extension, path;
  };
  std::vector<Entry> entries;
  // A text the listing could not copy is null; it reads as nothing.
  auto text = [](const char *part) { return std::string(part != nullptr ? part : ""); };
  for (int32_t i = 0; i < count; ++i) {
    Entry entry{"", text(list[i].name), text(list[i].extension), ""};
    entry.fileName = entry.name + (entry.extension.empty() ? "" : "." + entry.extension);
    entry.path = prefix + entry.fileName;
    std::string onDisk = (directory.empty() ? "." : directory) + "/" + entry.fileName;
    struct stat status;
    if (stat(onDisk.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) entry.path += '/';
    entries.push_back(std::move(entry));
  }
  fsReadDirFree(count, &list);
  std::sort(entries.begin(), entries.end(),
            [](const Entry &a, const Entry &b) { return a.fileName < b.fileName; });
  if (count == 0) {
    // Nothing listed: no match is not an error, a directory that cannot be
    // read is.
    DIR *opened = opendir(directory.empty() ? "." : directory.c_str());
    if (opened == nullptr)
      return systemFailure("ls", "cannot read directory " + args[0], errno);
    closedir(opened);
  }
  Table table(json, {{"path"}, {"name"}, {"extension"}});
  for (const Entry &entry : entries) table.row({entry.path, entry.name, entry.extension});
  return kOk;
}

}  // namespace fskit::tool
