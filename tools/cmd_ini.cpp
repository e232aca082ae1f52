// SPDX-License-Identifier: MIT
// fskit ini get|set|list: INI files at the command line, through the lossless
// document: a file keeps every line but the one `set` changes or adds.
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>

#include "ini/lossless.h"
#include "tools/command.h"

namespace fskit::tool {
namespace {

using ini::lossless::Document;

// What the C functions say when a lookup finds no value.
void reportNoValue(const std::string &paragraph, const std::string &topic) {
  std::fprintf(stderr, "Cannot find value for paragraph \"%s\" topic \"%s\"\n", paragraph.c_str(),
               topic.c_str());
}

// The document of FILE, or of standard input for "-"; nullopt when it
// cannot be read (the library, or the tool, has said why).
std::optional<Document> readDocument(const std::string &file) {
  if (file != "-") return Document::readFile(file.c_str());
  std::string text;
  if (!readStandardInput(text)) {
    systemFailure("ini", "cannot read standard input", errno);
    return std::nullopt;
  }
  return Document(text);
}

int runGet(std::vector<std::string> &args) {
  if (args.size() != 3) return usageError("ini", "usage: fskit ini get FILE PARAGRAPH TOPIC");
  std::optional<Document> document = readDocument(args[0]);
  if (!document) return kFailed;
  std::optional<std::string> value = document->value(args[1], args[2]);
  if (!value) {
    reportNoValue(args[1], args[2]);
    return kFailed;
  }
  std::printf("%s\n", value->c_str());
  return kOk;
}

int runSet(std::vector<std::string> &args) {
  if (args.size() != 4 && args.size() != 5)
    return usageError("ini", "usage: fskit ini set FILE PARAGRAPH TOPIC VALUE [COMMENT]");
  const std::string &file = args[0], &paragraph = args[1], &topic = args[2], &value = args[3];
  std::string comment = args.size() == 5 ? args[4] : "";
  if (file == "-") return usageError("ini", "set writes FILE back: give a file, not -");
  if (std::optional<std::string> why = ini::lossless::refusal(paragraph, topic, value, comment))
    return usageError("ini", *why);
  if (std::string back = ini::lossless::readBack(topic, value); back != value)
    std::fprintf(stderr,
                 "fskit ini: warning: the value cannot be read back whole; it reads as \"%s\"\n",
                 back.c_str());
  struct stat status;
  std::optional<Document> document =
      stat(file.c_str(), &status) == 0 ? Document::readFile(file.c_str()) : Document();
  if (!document) return kFailed;
  document->setValue(paragraph, topic, value, comment);
  errno = 0;
  if (document->writeFile(file.c_str())) return kOk;
  if (errno != 0) return systemFailure("ini", "cannot write " + file, errno);
  return failure("ini", "cannot write " + file);
}

int runList(std::vector<std::string> &args, bool json) {
  if (args.size() != 1) return usageError("ini", "usage: fskit ini list [--json] FILE");
  std::optional<Document> document = readDocument(args[0]);
  if (!document) return kFailed;
  Table table(json, {{"paragraph"}, {"topic"}, {"value"}});
  for (const Document::Entry &entry : document->values()) {
    if (entry.value)
      table.row({entry.paragraph, entry.topic, *entry.value});
    else
      reportNoValue(entry.paragraph, entry.topic);
  }
  return kOk;
}

}  // namespace

int runIni(std::vector<std::string> &args) {
  bool json = takeFlag(args, "--json");
  if (auto option = unknownOption(args)) return usageError("ini", "unknown option " + *option);
  if (args.empty()) return usageError("ini", "no subcommand given (get, set or list)");
  std::string subcommand = args.front();
  args.erase(args.begin());
  if (json && subcommand != "list") return usageError("ini", "--json is for ini list");
  if (subcommand == "get") return runGet(args);
  if (subcommand == "set") return runSet(args);
  if (subcommand == "list") return runList(args, json);
  return usageError("ini", "unknown subcommand '" + subcommand + "' (get, set or list)");
}

}  // namespace fskit::tool
