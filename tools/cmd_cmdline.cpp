// SPDX-License-Identifier: MIT
// fskit cmdline, fskit tags.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fskit/cmdline.h>
#include <fskit/frame.h>

#include "tools/command.h"

namespace fskit::tool {

int runCmdline(std::vector<std::string> &args) {
  if (auto option = unknownOption(args)) return usageError("cmdline", "unknown option " + *option);
  if (!args.empty() && args.front() == "--") args.erase(args.begin());
  if (args.empty()) return usageError("cmdline", "needs a LINE");
  // Several words are joined as the library joins a program's arguments.
  std::vector<char *> argv{nullptr};
  for (std::string &arg : args) argv.push_back(arg.data());
  int32_t length = 0;
  char *line = kwaCmdLnStr(int32_t(argv.size()), argv.data(), &length);
  if (line == nullptr) return failure("cmdline", "out of memory");
  KwaCmdLnParts parts;
  int32_t stop = kwaCmdLnPrts(line, &parts);
  if (stop != 0) {  // the parser has printed why on stderr, in one line
    fsFree(&line);
    return kFailed;
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

int runTags(std::vector<std::string> &args) {
  bool keywords = takeFlag(args, "--keywords");
  bool missingTag = false, missingLabel = false;
  std::optional<std::string> tag = takeOption(args, "--tag", missingTag);
  std::optional<std::string> label = takeOption(args, "--label", missingLabel);
  if (missingTag || missingLabel) return usageError("tags", "--tag and --label need a value");
  if (tag && label) return usageError("tags", "give --tag or --label, not both");
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
    if (kwaLabelToTag(count, table, label->c_str(), found) >= 0) std::printf("%s\n", found);
    else status = failure("tags", "no record whose label begins '" + *label + "'");
  } else {
    for (int32_t i = 0; i < count; ++i) std::printf("%s\t%s\n", table[i].tag, table[i].label);
  }
  std::free(table);
  return status;
}

}  // namespace fskit::tool
