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
int runDate(std::vector<std::string> &args);
// -- sort
// -- files
int runLs(std::vector<std::string> &args);
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
      {"date", "convert a date/time text between layouts",
       "usage: fskit date [--in N] [--out N] [--sep S] [--now] [TEXT]\n"
       "       fskit date --layouts\n"
       "Reads TEXT in input layout N (0-12, default 6: yyyymmddhhmmss+zzzz) and\n"
       "prints it in output layout N (0-10, default 4: the asctime text).\n"
       "Without TEXT the current local time is converted. --sep gives the\n"
       "separators (\"NONE\": fixed-width fields without any); --now fills what\n"
       "the text lacks, or replaces a text that cannot be read, with the current\n"
       "time. --layouts lists every layout with an example.\n"
       "example: fskit date --in 2 --out 8 07-MAR-98\n",
       runDate},
      // -- sort
      // -- files
      {"ls", "list the files of a directory that match a pattern",
       "usage: fskit ls DIRECTORY [NAME_PATTERN [EXT_PATTERN]]\n"
       "Lists the names in DIRECTORY (\\ or / between directories) that match\n"
       "NAME_PATTERN (default *) followed by EXT_PATTERN (default .*, which also\n"
       "matches names without a dot); * is any run of characters, ? any one,\n"
       "case counts. One line per name, tab-separated: name (up to the first\n"
       "dot), extension, directory, drive. Names beginning with a dot are left\n"
       "out; nothing is printed when nothing matches.\n"
       "example: fskit ls data 'run*' .raw\n",
       runLs},
      // -- cmdline
      // -- util
      // -- end of table
  };
  return table;
}

}  // namespace fskit::tool
