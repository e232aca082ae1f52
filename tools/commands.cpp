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
int runConvert(std::vector<std::string> &args);
// -- datetime
// -- sort
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
      {"convert", "foreign numbers (VAX, HP, Nova, INCOS, Quor) to text and back",
       "usage: fskit convert FORMAT HEX...\n"
       "       fskit convert --encode FORMAT NUMBER...\n"
       "       fskit convert --file FILE --format FORMAT\n"
       "Decodes values given as hexadecimal bytes in memory order (blanks between\n"
       "bytes allowed), encodes numbers into such bytes, or prints every value of\n"
       "a binary file, one per line. Formats and their sizes in bytes:\n"
       "  vaxf 4, vaxd 8      DEC VAX F and D floating point\n"
       "  hpshort 2, hplong 4 big-endian integers (decoded unsigned)\n"
       "  hpdouble 8          two big-endian 32-bit halves, read as a double\n"
       "  novaf 4, novad 8    Data General Nova floating point (decode only)\n"
       "  incos 2             INCOS mass word (decode only)\n"
       "  quorinty 2          Quor intensity word\n"
       "  quorrec 6           Quor record, printed as MASS INTENSITY FLAGS;\n"
       "                      encoded from MASS,INTENSITY[,FLAGS]\n"
       "example: fskit convert vaxf \"80 40 00 00\"\n"
       "         fskit convert --encode vaxd 3.141592653589793\n"
       "         fskit convert --file spectrum.dat --format quorrec\n",
       runConvert},
      // -- datetime
      // -- sort
      // -- files
      // -- cmdline
      // -- util
      // -- end of table
  };
  return table;
}

}  // namespace fskit::tool
