// The table of the tool's commands. Each family's commands live in their own
// file (cmd_<family>.cpp); their entries go under the family's marker below.
#include "tools/command.h"

namespace fskit::tool {

// -- frame
int runVersion(std::vector<std::string> &args);
int runPlatform(std::vector<std::string> &args);
// -- ini
// -- chemistry
int runFormula(std::vector<std::string> &args);
int runElements(std::vector<std::string> &args);
// -- numformat
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
      {"formula", "masses and canonical form of molecular formulas",
       "usage: fskit formula [--json] [--elements FILE | --ini FILE] FORMULA...\n"
       "Prints for each formula its canonical form (element-table order), nominal,\n"
       "monoisotopic and average mass and ring-plus-double-bond value, tab-separated\n"
       "under a header line (--json: one JSON object per line). Blanks or \".\"\n"
       "separate symbols (\"C5 13C H12 O6\"); a lower-case formula reads as upper case.\n"
       "The element table is the shipped kw_elements.tbl unless --elements FILE, or\n"
       "the INI file's \"elementFile\" in paragraph \"Formula Files\" (--ini FILE),\n"
       "names another. An unknown symbol is reported with its position; exit status 1.\n"
       "example: fskit formula C6H12O6 \"C5 13C H12 O6\"\n",
       runFormula},
      {"elements", "list the element table",
       "usage: fskit elements [--elements FILE | --ini FILE]\n"
       "Lists every record of the element table (elements, each followed by its\n"
       "isotopes) with index, label, symbol, atomic number, nominal, monoisotopic\n"
       "and average mass, abundance, rdbFactor and isotope shift, tab-separated.\n"
       "The table is chosen as for 'fskit formula'.\n"
       "example: fskit elements --elements data/kw_elements.tbl\n",
       runElements},
      // -- numformat
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
