// SPDX-License-Identifier: MIT
// fskit formula, fskit elements.
//
// The element table comes from, in this order: --elements FILE; the file an
// INI document names (--ini FILE, paragraph "Formula Files", topic
// "elementFile"); the shipped kw_elements.tbl, found as
// share/fskit/kw_elements.tbl next to the tool (build tree) or one level up
// (bin/../share/fskit under the install prefix); last, the library's own
// default names in the current directory.
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <fskit/chemistry.h>
#include <fskit/frame.h>
#include <fskit/ini.h>

#include "tools/command.h"

namespace fskit::tool {
namespace {

// The library reports through its message function; the tool sends those
// lines to standard error, each as one line naming the command, so that
// standard output holds only results.
const char *reportingCommand = "";
int messagesShown = 0;

int32_t messagesToStderr(const char *routine, int32_t *count, int32_t *codes, int32_t *,
                         int32_t *, char **texts) {
  for (int32_t i = 0; count != nullptr && i < *count; ++i, ++messagesShown) {
    if (codes[i] == 0)
      std::fprintf(stderr, "fskit %s: %s\n", reportingCommand, texts[i]);
    else
      std::fprintf(stderr, "fskit %s: %s: %s\n", reportingCommand, routine, texts[i]);
  }
  return 0;
}

bool readable(const std::string &path) { return access(path.c_str(), R_OK) == 0; }

std::optional<std::string> shippedTable() {
  std::string dir = programDirectory();
  if (dir.empty()) return std::nullopt;
  for (const char *relative : {"share/fskit/kw_elements.tbl", "../share/fskit/kw_elements.tbl"})
    if (readable(dir + relative)) return dir + relative;
  return std::nullopt;
}

struct TableChoice {
  std::optional<std::string> elements;  // --elements FILE
  std::optional<std::string> ini;       // --ini FILE
};

// Takes --elements and --ini from args. kOk, or the usage error reported.
int takeTableChoice(const char *command, std::vector<std::string> &args, TableChoice &choice) {
  bool missing = false;
  choice.elements = takeOption(args, "--elements", missing);
  choice.ini = takeOption(args, "--ini", missing);
  if (missing) return usageError(command, "--elements and --ini need a file name");
  if (choice.elements && choice.ini) return usageError(command, "give --elements or --ini, not both");
  if (auto option = unknownOption(args)) return usageError(command, "unknown option " + *option);
  if (!args.empty() && args.front() == "--") args.erase(args.begin());
  return kOk;
}

// Loads the element table the choice names. kOk, or the failure reported in
// one line.
int loadElementTable(const char *command, const TableChoice &choice) {
  reportingCommand = command;
  fsRegisterMessage(messagesToStderr);
  int32_t loaded = 0;
  std::optional<std::string> shipped = shippedTable();
  if (choice.elements) {
    loaded = fsLoadElemTable(choice.elements->c_str());
  } else if (choice.ini) {
    int32_t handle = fsIniReadFile(choice.ini->c_str());
    if (handle == 0) return kFailed;  // the library has said why
    char value[1024], comment[2];
    if (fsIniGetValue(handle, "Formula Files", "elementFile", value, comment) != 0 || !shipped)
      loaded = fsInitElemTable(handle, 1);
    else
      loaded = fsLoadElemTable(shipped->c_str());
  } else if (shipped) {
    loaded = fsLoadElemTable(shipped->c_str());
  } else {
    loaded = fsInitElemTable(0, 1);
  }
  // The library has said why, unless it failed silently.
  if (loaded == 0)
    return messagesShown > 0 ? kFailed : failure(command, "no element table could be loaded");
  if (fsElementTableCount() < 1) return failure(command, "the element table holds no records");
  return kOk;
}

std::string jsonText(const std::string &text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      out += escaped;
    } else {
      out += c;
    }
  }
  return out + "\"";
}

// Names the symbol that stopped fsTblParseMF after `consumed` characters.
// The range parser reads the same tokens when given the formula as the
// merging parser sees it (blanks as ".") and keeps the refused symbol.
std::string describeRefusal(const std::string &formula, int32_t consumed) {
  std::string dotted = formula;
  for (char &c : dotted)
    if (c == ' ') c = '.';
  int32_t separated = dotted.find('.') != std::string::npos;
  size_t room = dotted.size() + 2;
  std::vector<char> symbols(room * 10, '\0');
  std::vector<int32_t> low(room, -1), high(room), numbers(room), shifts(room), flags(room);
  FsMsgFunction previous = fsMsgFunctionIs();
  fsRegisterMessage(nullptr);
  fsTblParseMFRange(dotted.c_str(), separated, int32_t(room),
                    reinterpret_cast<char(*)[10]>(symbols.data()), low.data(), high.data(),
                    numbers.data(), shifts.data(), flags.data());
  fsRegisterMessage(previous);
  size_t refused = 0;
  while (refused < room && low[refused] != -1) ++refused;
  std::string symbol(&symbols[refused * 10]);
  // Where the symbol starts: its last occurrence, in any case, before the end
  // of what was consumed.
  std::string before = formula.substr(0, size_t(consumed));
  size_t start = std::string::npos;
  for (size_t at = before.size() >= symbol.size() ? before.size() - symbol.size() + 1 : 0;
       at-- > 0 && start == std::string::npos;)
    if (strncasecmp(before.c_str() + at, symbol.c_str(), symbol.size()) == 0) start = at;
  size_t position = start == std::string::npos ? size_t(consumed) : start + 1;
  return "unknown symbol '" + symbol + "' at position " + std::to_string(position) +
         " of '" + formula + "'";
}

}  // namespace

int runFormula(std::vector<std::string> &args) {
  bool json = takeFlag(args, "--json");
  TableChoice choice;
  if (int status = takeTableChoice("formula", args, choice); status != kOk) return status;
  if (args.empty()) return usageError("formula", "no formula given");
  if (int status = loadElementTable("formula", choice); status != kOk) return status;

  if (!json) std::printf("formula\tcanonical\tnominal\tmonoisotopic\taverage\trdb\n");
  int status = kOk;
  for (const std::string &formula : args) {
    std::vector<char> text(20 * formula.size() + 2);
    int32_t nominal = 0;
    double mono = 0.0, average = 0.0, rdb = 0.0;
    int32_t result = fsTblParseMF(formula.c_str(), 0, 0, text.data(), &nominal, &mono,
                                  &average, &rdb, 0, nullptr, nullptr, nullptr, nullptr);
    if (result <= 0) {
      status = failure("formula", result < 0 ? describeRefusal(formula, -result)
                                             : "empty formula '" + formula + "'");
      continue;
    }
    if (json)
      std::printf("{\"formula\":%s,\"canonical\":%s,\"nominal\":%d,\"monoisotopic\":%.6f,"
                  "\"average\":%.4f,\"rdb\":%.1f}\n",
                  jsonText(formula).c_str(), jsonText(text.data()).c_str(), nominal, mono,
                  average, rdb);
    else
      std::printf("%s\t%s\t%d\t%.6f\t%.4f\t%.1f\n", formula.c_str(), text.data(), nominal, mono,
                  average, rdb);
  }
  return status;
}

int runElements(std::vector<std::string> &args) {
  TableChoice choice;
  if (int status = takeTableChoice("elements", args, choice); status != kOk) return status;
  if (!args.empty()) return usageError("elements", "unexpected argument " + args.front());
  if (int status = loadElementTable("elements", choice); status != kOk) return status;
  std::printf("index\tlabel\tsymbol\tatomic\tnominal\tmonoisotopic\taverage\tabundance\t"
              "rdbFactor\tshift\n");
  for (int32_t i = 0; i < fsElementTableCount(); ++i) {
    FsElementRecord record;
    if (fsGetElementInfo(i, &record) == 0) return kFailed;
    std::printf("%d\t%.8s\t%s\t%d\t%d\t%.9f\t%.9f\t%g\t%d\t%d\n", i, record.label,
                record.symbol, record.atomicNumber, record.nominalMass, record.monoMass,
                record.averageMass, record.abundance, record.rdbFactor, record.isotopeShift);
  }
  return kOk;
}

}  // namespace fskit::tool
