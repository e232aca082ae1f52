// fskit ini get|set|list: INI files at the command line.
#include <sys/stat.h>

#include <cstdio>

#include <fskit/ini.h>

#include "tools/command.h"

namespace fskit::tool {
namespace {

// Any name, topic or value read from a file fits (lines are read in pieces
// of at most 1022 bytes); a longer value given to `set` is never read back
// into these.
constexpr int kTextSize = 1024;

int runGet(std::vector<std::string> &args) {
  if (args.size() != 3) return usageError("ini", "usage: fskit ini get FILE PARAGRAPH TOPIC");
  int32_t handle = fsIniReadFile(args[0].c_str());
  if (handle == 0) return kFailed;  // the library has said why
  char value[kTextSize], comment[1];
  int32_t found = fsIniGetValue(handle, args[1].c_str(), args[2].c_str(), value, comment);
  fsIniReleaseFile(handle);
  if (found == 0) return kFailed;
  std::printf("%s\n", value);
  return kOk;
}

int runSet(std::vector<std::string> &args) {
  if (args.size() != 4 && args.size() != 5)
    return usageError("ini", "usage: fskit ini set FILE PARAGRAPH TOPIC VALUE [COMMENT]");
  const char *file = args[0].c_str();
  struct stat status;
  int32_t handle = stat(file, &status) == 0 ? fsIniReadFile(file) : fsIniNewFile(file);
  if (handle == 0) return kFailed;
  fsIniSetValue(handle, args[1].c_str(), args[2].c_str(), args[3].c_str(),
                args.size() == 5 ? args[4].c_str() : "");
  if (fsIniWriteFile(handle) == 1) return kOk;
  fsIniReleaseFile(handle);
  return failure("ini", "cannot write " + args[0]);
}

int runList(std::vector<std::string> &args) {
  if (args.size() != 1) return usageError("ini", "usage: fskit ini list FILE");
  int32_t handle = fsIniReadFile(args[0].c_str());
  if (handle == 0) return kFailed;
  char paragraph[kTextSize], topic[kTextSize], value[kTextSize];
  for (int32_t first = 1; fsIniNext(first, handle, paragraph, topic, value) == 1; first = 0)
    std::printf("%s\t%s\t%s\n", paragraph, topic, value);
  fsIniReleaseFile(handle);
  return kOk;
}

}  // namespace

int runIni(std::vector<std::string> &args) {
  if (auto option = unknownOption(args)) return usageError("ini", "unknown option " + *option);
  if (args.empty()) return usageError("ini", "no subcommand given (get, set or list)");
  std::string subcommand = args.front();
  args.erase(args.begin());
  if (subcommand == "get") return runGet(args);
  if (subcommand == "set") return runSet(args);
  if (subcommand == "list") return runList(args);
  return usageError("ini", "unknown subcommand '" + subcommand + "' (get, set or list)");
}

}  // namespace fskit::tool
