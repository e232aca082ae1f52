// SPDX-License-Identifier: MIT
// fskit key, fskit des.
#include <cstdio>
#include <string>

#include <fskit/util.h>

#include "tools/command.h"

namespace fskit::tool {

int runKey(std::vector<std::string> &args) {
  if (!args.empty()) return usageError("key", "takes no arguments");
  // 4 is end of input (or Ctrl+D), after which no more keys come.
  for (;;) {
    int32_t code = getKeyCode();
    if (code == 'q' || code == 4) return kOk;
    std::printf("%d\n", int(code));
    std::fflush(stdout);
  }
}

int runDes(std::vector<std::string> &args) {
  if (auto option = unknownOption(args)) return usageError("des", "unknown option " + *option);
  if (args.size() != 2 || (args[0] != "encrypt" && args[0] != "decrypt"))
    return usageError("des", "usage: fskit des encrypt|decrypt TEXT");
  const std::string &text = args[1];
  if (args[0] == "encrypt") {
    std::string out(16 * (text.size() / 8 + 1) + 1, '\0');
    desEncrypt(text.c_str(), out.data());
    std::printf("%s\n", out.c_str());
    return kOk;
  }
  std::string out(text.size() / 2 + 9, '\0');
  if (desDecrypt(text.c_str(), out.data()) == 0)
    return failure("des", "more than 128 groups of 8 digits");
  std::printf("%s\n", out.c_str());
  return kOk;
}

}  // namespace fskit::tool
