// The table of the tool's commands. Each family's commands live in their own
// file (cmd_<name>.cpp) and are listed here.
#include "tools/command.h"

namespace fskit::tool {

int runVersion(std::vector<std::string> &args);
int runPlatform(std::vector<std::string> &args);

const std::vector<Command> &commands() {
  static const std::vector<Command> table = {
      {"version", "print the fskit version",
       "usage: fskit version\n"
       "Prints the version of the fskit tool and library.\n"
       "example: fskit version\n",
       runVersion},
      {"platform", "print the platform the library reports",
       "usage: fskit platform\n"
       "Prints the operating system, byte order and floating-point format that\n"
       "fsGetPlatform() reports, one per line.\n"
       "example: fskit platform\n",
       runPlatform},
  };
  return table;
}

}  // namespace fskit::tool
