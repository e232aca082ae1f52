// SPDX-License-Identifier: MIT
// The chemistry commands' element table, formulas from standard input and
// number text.
#include "tools/element_choice.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <fskit/chemistry.h>
#include <fskit/ini.h>

#include "tools/command.h"

namespace fskit::tool {
namespace {

bool readable(const std::string &path) { return access(path.c_str(), R_OK) == 0; }

std::optional<std::string> shippedTable() {
  std::string dir = programDirectory();
  if (dir.empty()) return std::nullopt;
  for (const char *relative : {"share/fskit/kw_elements.tbl", "../share/fskit/kw_elements.tbl"})
    if (readable(dir + relative)) return dir + relative;
  return std::nullopt;
}

}  // namespace

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

int loadElementTable(const char *command, const TableChoice &choice) {
  int32_t loaded = 0;
  std::optional<std::string> shipped = shippedTable();
  if (choice.elements) {
    // The library only says that it failed; the system says why.
    std::FILE *stream = std::fopen(choice.elements->c_str(), "r");
    if (stream == nullptr) return systemFailure(command, *choice.elements, errno);
    std::fclose(stream);
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
    return libraryMessagesShown() > 0 ? kFailed : failure(command, "no element table could be loaded");
  if (fsElementTableCount() < 1) return failure(command, "the element table holds no records");
  return kOk;
}


int formulasFromStandardInput(const char *command, std::vector<std::string> &args) {
  if (args.size() != 1 || args.front() != "-") return kOk;
  std::string text;
  if (!readStandardInput(text)) return systemFailure(command, "cannot read standard input", errno);
  args.clear();
  for (size_t start = 0; start < text.size();) {
    size_t end = std::min(text.find('\n', start), text.size());
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.find_first_not_of(" \t") != std::string::npos) args.push_back(line);
    start = end + 1;
  }
  return kOk;
}

std::string fixed(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

}  // namespace fskit::tool
