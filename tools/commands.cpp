// SPDX-License-Identifier: MIT
// The table of the tool's commands. Each family's commands live in their own
// file (cmd_<family>.cpp); their entries go under the family's marker below.
#include "tools/command.h"

namespace fskit::tool {

// -- frame
int runVersion(std::vector<std::string> &args);
int runPlatform(std::vector<std::string> &args);
// -- ini
int runIni(std::vector<std::string> &args);
// -- chemistry
int runFormula(std::vector<std::string> &args);
int runElements(std::vector<std::string> &args);
int runPattern(std::vector<std::string> &args);
// -- numformat
int runConvert(std::vector<std::string> &args);
// -- datetime
int runDate(std::vector<std::string> &args);
// -- sort
int runSort(std::vector<std::string> &args);
// -- files
int runLs(std::vector<std::string> &args);
// -- cmdline
int runCmdline(std::vector<std::string> &args);
int runTags(std::vector<std::string> &args);
// -- util
int runKey(std::vector<std::string> &args);
int runDes(std::vector<std::string> &args);
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
       "usage: fskit platform [--json]\n"
       "Prints the operating system, byte order and floating-point format that\n"
       "fsGetPlatform() reports, one per line under the header \"property value\"\n"
       "(--json: one JSON object per line with these keys).\n"
       "example: fskit platform\n",
       runPlatform},
      // -- ini
      {"ini", "read, set and list values of INI files",
       "usage: fskit ini get FILE PARAGRAPH TOPIC\n"
       "       fskit ini set FILE PARAGRAPH TOPIC VALUE [COMMENT]\n"
       "       fskit ini list [--json] FILE\n"
       "get prints the value of TOPIC in the first paragraph named PARAGRAPH.\n"
       "set changes or adds the value (and the comment, when given) and writes the\n"
       "file back; a missing file is created. Every other line stays byte for byte\n"
       "as it was: lines before the first paragraph, '#' comments, lines without\n"
       "'=', \"[]\" headers, CR LF line ends, a last line without line end. The\n"
       "first line of TOPIC is replaced in place as \"TOPIC = VALUE\\t; COMMENT\"; a\n"
       "new topic goes after the lines its paragraph's reading takes in (before the\n"
       "next header or the first line without '='), a new paragraph at the end.\n"
       "set refuses (exit status 2) what would change how the file reads: a line\n"
       "feed or carriage return in any argument, an empty PARAGRAPH or one with ']',\n"
       "a TOPIC that is empty, has '=', begins with '[', ';' or '#', or begins or\n"
       "ends with a blank. It warns, and still writes, when VALUE will not read\n"
       "back whole: one with both ';' and '\"' (it is cut at the '\"'), one without\n"
       "';' that begins with a blank, '=' or '\"', one with trailing blanks (they\n"
       "are dropped), or a line longer than 1022 bytes (it is read in pieces).\n"
       "list prints every value as PARAGRAPH, TOPIC and VALUE separated by tabs, in\n"
       "file order, under the header \"paragraph topic value\" (--json: one JSON\n"
       "object per line with these keys); a paragraph's listing stops at its\n"
       "first blank or comment line.\n"
       "get and list read standard input for FILE -; set refuses - (status 2),\n"
       "as it writes the file back.\n"
       "Names are case-sensitive; get, set and list find the same lines as the\n"
       "library's INI functions wherever these read the file.\n"
       "example: fskit ini set app.ini \"Formula Files\" elementFile elements.tbl\n",
       runIni},
      // -- chemistry
      {"formula", "masses and canonical form of molecular formulas",
       "usage: fskit formula [--json] [--elements FILE | --ini FILE] [--adduct ADDUCT]\n"
       "                     FORMULA...\n"
       "       fskit formula [--json] [--elements FILE | --ini FILE] --composition\n"
       "                     FORMULA...\n"
       "Prints for each formula its canonical form (element-table order), nominal,\n"
       "monoisotopic and average mass and ring-plus-double-bond value, tab-separated\n"
       "under a header line (--json: one JSON object per line). Blanks or \".\"\n"
       "separate symbols (\"C5 13C H12 O6\"); a lower-case formula reads as upper case.\n"
       "The element table is the shipped kw_elements.tbl unless --elements FILE, or\n"
       "the INI file's \"elementFile\" in paragraph \"Formula Files\" (--ini FILE),\n"
       "names another. An unknown symbol is reported with its position; exit status 1.\n"
       "A single - reads the formulas from standard input, one per line (blank\n"
       "lines are skipped).\n"
       "--adduct adds the column mz: the m/z of the ion [nM+A-B]z+ or z- made of the\n"
       "molecule, (n*M + added - removed - z*me) / |z| from monoisotopic masses with\n"
       "the electron mass me = 0.000548579909, e.g. [M+H]+, [M+Na]+, [M-H]-,\n"
       "[M+2H]2+, [2M+Na]+, [M-H2O+H]+ (any formulas, each with an optional count;\n"
       "an isotope in a term in brackets: [M+[13C]H3]+). A bad adduct is reported\n"
       "with its position; exit status 1.\n"
       "--composition prints instead per formula and element (in the order of the\n"
       "formula, an isotope such as 13C on its own) the columns formula, element,\n"
       "count, mass (the element's average mass in the formula, 4 decimals) and\n"
       "percent (its mass fraction, 4 decimals). The percents of a formula add up\n"
       "to exactly 100: each is cut to 4 decimals and the missing 0.0001 steps go\n"
       "to the largest remainders, so none is 0.0001 or more from the exact value.\n"
       "The formula may hold groups \"(CH3)3COH\", parts \"CuSO4*5H2O\" and\n"
       "bracketed isotopes \"[13C]2C4H12O6\"; symbols are case-sensitive, without\n"
       "blanks.\n"
       "example: fskit formula C6H12O6 \"C5 13C H12 O6\"\n"
       "         fskit formula --adduct \"[M+Na]+\" C6H12O6\n"
       "         fskit formula --composition \"CuSO4*5H2O\"\n",
       runFormula},
      {"elements", "list the element table",
       "usage: fskit elements [--json] [--elements FILE | --ini FILE]\n"
       "Lists every record of the element table (elements, each followed by its\n"
       "isotopes) with index, label, symbol, atomic number, nominal, monoisotopic\n"
       "and average mass, abundance, rdbFactor and isotope shift, tab-separated\n"
       "under a header line (--json: one JSON object per line, keyed as the header).\n"
       "The table is chosen as for 'fskit formula'.\n"
       "example: fskit elements --elements data/kw_elements.tbl\n",
       runElements},
      {"pattern", "isotope patterns of molecules and ions",
       "usage: fskit pattern [--json] [--adduct ADDUCT | --charge Z]\n"
       "                     [--resolution R | --fine] [--min-relative P | --coverage P]\n"
       "                     [--svg FILE] [--elements FILE | --ini FILE] FORMULA...\n"
       "Prints the isotope pattern of each formula under the header \"formula mz\n"
       "fraction relative\": per peak, in increasing m/z, its mass (m/z for an ion,\n"
       "6 decimals), the share of all molecules in it (9 significant digits) and its\n"
       "percent of the largest peak (4 decimals); --json: one JSON object per line.\n"
       "Peaks: by default one per nominal mass, at the isotopologues' weighted mean\n"
       "mass; --fine: every isotopologue; --resolution R: isotopologues merged at\n"
       "resolving power R, each joining the nearest peak of a more abundant one\n"
       "within m/R of it. Peaks below P percent of the largest (--min-relative,\n"
       "default 0.01) are left out; --coverage P (0 < P <= 1) keeps instead the\n"
       "fewest peaks whose fractions add up to at least P.\n"
       "--charge Z: the molecule carries the signed charge Z, m/z = (M - Z*me)/|Z|;\n"
       "--adduct: the ion [nM+A-B]z+ or z- as for 'fskit formula' ([M+H]+,\n"
       "[M+2H]2+, [M-H2O+H]+, [2M+Na]+, [M-H]-), its pattern that of n*M+A-B.\n"
       "--svg FILE draws the pattern of one formula as a stick spectrum.\n"
       "Formulas read as for 'fskit formula --composition'; - reads them from\n"
       "standard input, one per line. Masses and abundances come from the element\n"
       "table, chosen as for 'fskit formula'.\n"
       "example: fskit pattern C6H12O6\n"
       "         fskit pattern --fine --adduct \"[M+2H]2+\" C254H377N65O75S6\n",
       runPattern},
      // -- numformat
      {"convert", "foreign numbers (VAX, HP, Nova, INCOS, Quor) to text and back",
       "usage: fskit convert [--json] FORMAT HEX...\n"
       "       fskit convert [--json] --encode FORMAT NUMBER...\n"
       "       fskit convert [--json] --file FILE --format FORMAT\n"
       "Decodes values given as hexadecimal bytes in memory order (blanks between\n"
       "bytes allowed), encodes numbers into such bytes, or prints every value of\n"
       "a binary file (FILE -: standard input). One line per value, tab-separated\n"
       "under a header line: \"bytes value\" (the bytes as read), \"number bytes\"\n"
       "(--encode), or \"offset value\" (--file, the value's byte offset). --json:\n"
       "one JSON object per line with these keys, the offset a number, the rest\n"
       "texts. Formats and their sizes in bytes:\n"
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
      {"date", "convert a date/time text between layouts",
       "usage: fskit date [--in N] [--out N] [--sep S] [--now] [TEXT]\n"
       "       fskit date --layouts [--json]\n"
       "Reads TEXT in input layout N (0-12, default 6: yyyymmddhhmmss+zzzz) and\n"
       "prints it in output layout N (0-10, default 4: the asctime text).\n"
       "Without TEXT the current local time is converted. --sep gives the\n"
       "separators (\"NONE\": fixed-width fields without any); --now fills what\n"
       "the text lacks, or replaces a text that cannot be read, with the current\n"
       "time. --layouts lists every layout with an example, tab-separated under\n"
       "the header \"direction layout example fields\" (direction in or out;\n"
       "--json: one JSON object per line with these keys).\n"
       "example: fskit date --in 2 --out 8 07-MAR-98\n",
       runDate},
      // -- sort
      {"sort", "sort the lines of a text file, in memory or through work files",
       "usage: fskit sort INPUT OUTPUT [--buffer BYTES] [--unique] [--count]\n"
       "                  [--temporary-directory DIR] [--prefix P]\n"
       "Sorts the lines of INPUT byte by byte into OUTPUT. A file larger than the\n"
       "buffer (default: the whole file) is sorted in chunks through work files in\n"
       "a new directory of the tool's own, made in DIR (default: $TMPDIR, else\n"
       "/tmp) and removed afterwards, so no other file is ever touched; P starts\n"
       "the work files' names there. OUTPUT is replaced only once the sort is\n"
       "complete. The library's progress lines go to standard error.\n"
       "INPUT - reads standard input (copied to a file in the work directory\n"
       "first); OUTPUT - writes standard output once the sort is complete.\n"
       "  --unique  write equal lines once and drop empty lines\n"
       "  --count   as --unique, each line followed by a blank and its count\n"
       "Exit status 1, with OUTPUT left as it was (nothing written for -), when\n"
       "the sort fails or stops early (a line longer than the buffer).\n"
       "example: fskit sort names.txt sorted.txt --buffer 1000000\n"
       "         ls | fskit sort - - --unique\n",
       runSort},
      // -- files
      {"ls", "list the files of a directory that match a pattern",
       "usage: fskit ls [--json] DIRECTORY [NAME_PATTERN [EXT_PATTERN]]\n"
       "Lists the names in DIRECTORY (\\ or / between directories) that match\n"
       "NAME_PATTERN (default *) followed by EXT_PATTERN (default .*, which also\n"
       "matches names without a dot); * is any run of characters, ? any one,\n"
       "case counts. Under a header line, one line per name, sorted by name byte\n"
       "by byte, tab-separated: path, name (up to the first dot), extension\n"
       "(--json: one JSON object per line with these keys). The path is\n"
       "DIRECTORY as given, a '/' and the name, with a trailing '/' for a\n"
       "directory (data/runs/). Names beginning with a dot are left out. Nothing\n"
       "matching prints the header only (status 0); a directory that cannot be\n"
       "read is an error (status 1).\n"
       "example: fskit ls data 'run*' .raw\n",
       runLs},
      // -- cmdline
      {"cmdline", "show how a command line splits into arguments and qualifiers",
       "usage: fskit cmdline [--json] LINE...\n"
       "Parses LINE (several words are joined with single blanks) and prints one\n"
       "line per part under the header \"part text value end\", tab-separated:\n"
       "the arguments (\"argument<TAB>TEXT<TAB><TAB>,\" where a comma ended one),\n"
       "then the qualifiers (\"qualifier<TAB>NAME<TAB>VALUE<TAB>\", VALUE empty when\n"
       "none was given); --json: one JSON object per line with these keys. When parsing\n"
       "stops, or a quote or a '(' list is left open, the parser's message goes\n"
       "to standard error, nothing to standard output, and the status is 1.\n"
       "Put -- before a LINE whose first word begins with --.\n"
       "example: fskit cmdline 'copy a.dat,b.dat /log=out.txt /verbose'\n",
       runCmdline},
      {"tags", "list a tag file or look a tag or label up in it",
       "usage: fskit tags FILE [--keywords] [--json | --tag TAG | --label LABEL]\n"
       "Reads the tag file FILE (lines \"TAG LABEL ! comment\") and prints each\n"
       "record as \"TAG<TAB>LABEL\" under the header \"tag label\" (--json: one\n"
       "JSON object per line with these keys). --keywords turns the labels into\n"
       "\"##LABEL=\".\n"
       "--tag prints the label of the first record with exactly that (upper-case)\n"
       "tag; --label prints the tag of the first record whose label begins with\n"
       "LABEL, ignoring case (\"mass\" finds \"Mass spectrum\"). Nothing found:\n"
       "status 1.\n"
       "example: fskit tags detectors.tbl --label mass\n",
       runTags},
      // -- util
      {"key", "print the code of each key pressed",
       "usage: fskit key\n"
       "Reads key presses without echo and prints the code getKeyCode() gives\n"
       "for each, one per line, until q is pressed or input ends (Ctrl+D).\n"
       "Cursor, editing and function keys give 274 and up (up arrow 274, F1 281).\n"
       "example: fskit key\n",
       runKey},
      {"des", "obfuscate a short text into hexadecimal digits and back",
       "usage: fskit des encrypt|decrypt TEXT\n"
       "encrypt prints TEXT enciphered as 16 hexadecimal digits per 8 characters;\n"
       "decrypt prints the text back (up to its first blank). The key is built\n"
       "into the library: this hides text from a casual glance, it does not\n"
       "protect it.\n"
       "example: fskit des encrypt secret\n",
       runDes},
      // -- end of table
  };
  return table;
}

}  // namespace fskit::tool
