// fskit cmdline, fskit tags.
#include <cstdio>
#include <cstdlib>

#include <fskit/cmdline.h>
#include <fskit/frame.h>

#include "tools/command.h"

namespace fskit::tool {

int runCmdline(std::vector<std::string> &args) {
  if (args.empty()) return usageError("cmdline", "needs a LINE");
  // Several words are joined as the library joins a program's arguments.
  std::vector<char *> argv{nullptr};
  for (std::string &arg : args) argv.push_back(arg.data());
  int32_t length = 0;
  char *line = kwaCmdLnStr(int32_t(argv.size()), argv.data(), &length);
  if (line == nullptr) return failure("cmdline", "out of memory");
  KwaCmdLnParts parts;
  int32_t stop = kwaCmdLnPrts(line, &parts);
  if (stop != 0) {
    fsFree(&line);
    char shown = char(stop);
    return failure("cmdline", "stopped at character " + std::to_string(stop) +
                                  (shown > ' ' && shown < 127 ? std::string(" '") + shown + "'" : ""));
  }
  for (int i = 0; i < parts.nArgs; ++i)
    std::printf("argument\t%s%s\n", parts.args[i], parts.argEnds[i] == ',' ? "\t," : "");
  for (int i = 0; i < parts.nQuals; ++i) {
    if (parts.qualValues[i] != nullptr)
      std::printf("qualifier\t%s\t%s\n", parts.qualNames[i], parts.qualValues[i]);
    else
      std::printf("qualifier\t%s\n", parts.qualNames[i]);
  }
  fsFree(&line);
  return kOk;
}

}  // namespace fskit::tool
