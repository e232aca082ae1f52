// SPDX-License-Identifier: MIT
// fskit version, fskit platform.
#include <cstdio>

#include <fskit/frame.h>
#include <fskit/version.h>

#include "tools/command.h"

namespace fskit::tool {

int runVersion(std::vector<std::string> &args) {
  if (!args.empty()) return usageError("version", "takes no arguments");
  std::printf("fskit %s\n", FSKIT_VERSION_STRING);
  return kOk;
}

int runPlatform(std::vector<std::string> &args) {
  bool json = takeFlag(args, "--json");
  if (auto option = unknownOption(args)) return usageError("platform", "unknown option " + *option);
  if (!args.empty()) return usageError("platform", "takes no arguments");
  char os[6], byteOrder[7], floatFormat[5];
  fsGetPlatform(os, byteOrder, floatFormat);
  Table table(json, {{"property"}, {"value"}});
  table.row({"os", os});
  table.row({"byte order", byteOrder});
  table.row({"float format", floatFormat});
  return kOk;
}

}  // namespace fskit::tool
