// SPDX-License-Identifier: MIT
// fskit cmdline, fskit tags.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fskit/cmdline.h>
#include <fskit/frame.h>

#include "platform/ascii.h"
#include "tools/command.h"

namespace fskit::tool {
namespace {

// Whether `line` leaves a quote or a list open. Only meaningful for a line the
// parser read to its end: then every '"' outside a list opened a quote and
// every '(' outside a quote opened a list (elsewhere they stop it), and the
// parser has printed why on standard error but still reports success.
bool leftOpen(const char *line) {
  bool inQuote = false, inList = false;
  for (; *line != '\0'; ++line) {
    if (inQuote) inQuote = *line != '"';  // "" closes and reopens
    else if (inList) inList = *line != ')';
    else if (*line == '"') inQuote = true;
    else if (*line == '(') inList = true;
  }
  return inQuote || inList;
}

}  // namespace

int runCmdline(std::vector<std::string> &args) {
  bool json = takeFlag(args, "--json");
  if (auto option = unknownOption(args)) return usageError("cmdline", "unknown option " + *option);
  if (!args.empty() && args.front() == "--") args.erase(args.begin());
  if (args.empty()) return usageError("cmdline", "needs a LINE");
  // Several words are joined as the library joins a program's arguments.
  std::vector<char *> argv{nullptr};
  for (std::string &arg : args) argv.push_back(arg.data());
  int32_t length = 0;
  char *line = kwaCmdLnStr(int32_t(argv.size()), argv.data(), &length);
  if (line == nullptr) return failure("cmdline", "out of memory");
  bool open = leftOpen(line);  // before the parser splits the line in place
  KwaCmdLnParts parts;
  int32_t stop = kwaCmdLnPrts(line, &parts);
  if (stop != 0 || open) {  // the parser has printed why on stderr, in one line
    fsFree(&line);
    return kFailed;
  }
  Table table(json, {{"part"}, {"text"}, {"value"}, {"end"}});
  for (int i = 0; i < parts.nArgs; ++i)
    table.row({"argument", parts.args[i], "", parts.argEnds[i] == ',' ? "," : ""});
  for (int i = 0; i < parts.nQuals; ++i)
    table.row({"qualifier", parts.qualNames[i],
               parts.qualValues[i] != nullptr ? parts.qualValues[i] : "", ""});
  fsFree(&line);
  return kOk;
}

int runTags(std::vector<std::string> &args) {
  bool keywords = takeFlag(args, "--keywords");
  bool json = takeFlag(args, "--json");
  bool missingTag = false, missingLabel = false;
  std::optional<std::string> tag = takeOption(args, "--tag", missingTag);
  std::optional<std::string> label = takeOption(args, "--label", missingLabel);
  if (missingTag || missingLabel) return usageError("tags", "--tag and --label need a value");
  if (tag && label) return usageError("tags", "give --tag or --label, not both");
  if (json && (tag || label)) return usageError("tags", "--json is for the listing");
  if (auto unknown = unknownOption(args)) return usageError("tags", "unknown option " + *unknown);
  if (args.size() != 1) return usageError("tags", "needs one FILE");

  std::FILE *stream = std::fopen(args[0].c_str(), "r");
  if (stream == nullptr) return failure("tags", args[0] + ": " + std::strerror(errno));
  int32_t count = 0, capacity = 0;
  KwaTagEntry *table = nullptr;
  kwaReadTags(stream, keywords ? 1 : 0, &count, &capacity, &table);
  std::fclose(stream);

  int status = kOk;
  char found[64];
  if (tag) {
    if (kwaTagToLabel(count, table, tag->c_str(), found) >= 0) std::printf("%s\n", found);
    else status = failure("tags", "no record with the tag '" + *tag + "'");
  } else if (label) {
    // The record's label begins with LABEL, as one types the start of a label
    // (kwaLabelToTag() asks the reverse: a label that begins with the record's).
    auto begins = [&](const char *text) {
      for (char c : *label)
        if (*text == '\0' || ascii::toLower(*text++) != ascii::toLower(c)) return false;
      return true;
    };
    int32_t match = -1;
    for (int32_t i = 0; i < count && match < 0; ++i)
      if (begins(table[i].label)) match = i;
    if (match >= 0) std::printf("%s\n", table[match].tag);
    else status = failure("tags", "no record whose label begins '" + *label + "'");
  } else {
    Table listing(json, {{"tag"}, {"label"}});
    for (int32_t i = 0; i < count; ++i) listing.row({table[i].tag, table[i].label});
  }
  std::free(table);
  return status;
}

}  // namespace fskit::tool
