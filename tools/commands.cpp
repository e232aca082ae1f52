// The table of the tool's commands. Each family's commands live in their own
// file (cmd_<family>.cpp); their entries go under the family's marker below.
#include "tools/command.h"

namespace fskit::tool {

// -- frame
int runVersion(std::vector<std::string> &args);
int runPlatform(std::vector<std::string> &args);
// -- ini
// -- chemistry
// -- numformat
// -- datetime
// -- sort
int runSort(std::vector<std::string> &args);
// -- files
// -- cmdline
// -- util
// -- end of declarations

const std::vector<Command> &commands() {
  static const std::vector<Command> table = {
      // -- frame
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
      // -- ini
      // -- chemistry
      // -- numformat
      // -- datetime
      // -- sort
      {"sort", "sort the lines of a text file, in memory or through work files",
       "usage: fskit sort INPUT OUTPUT [--prefix P] [--buffer BYTES] [--unique] [--count]\n"
       "Sorts the lines of INPUT byte by byte into OUTPUT and prints the library's\n"
       "progress lines. A file larger than the buffer (default: the whole file) is\n"
       "sorted in chunks through work files named Psort_N.tmp (P is taken literally,\n"
       "so a directory ends in '/'), which are removed afterwards.\n"
       "  --unique  write equal lines once and drop empty lines\n"
       "  --count   as --unique, each line followed by a blank and its count\n"
       "Exit status 1 when no line was written (an error, or nothing to sort).\n"
       "example: fskit sort names.txt sorted.txt --buffer 1000000 --prefix /tmp/\n",
       runSort},
      // -- files
      // -- cmdline
      // -- util
      // -- end of table
  };
  return table;
}

}  // namespace fskit::tool
