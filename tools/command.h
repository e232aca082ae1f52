// SPDX-License-Identifier: MIT
// The fskit tool's commands and the small helpers they share.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fskit::tool {

// Exit statuses of the tool.
inline constexpr int kOk = 0;
inline constexpr int kFailed = 1;      // the job could not be done
inline constexpr int kUsageError = 2;  // the command line was wrong

struct Command {
  const char *name;
  const char *summary;  // one line, for `fskit --help`
  const char *help;     // full text for `fskit NAME --help`, with an example
  int (*run)(std::vector<std::string> &args);  // args after the command name
};

// Every command, in the order `fskit --help` lists them.
const std::vector<Command> &commands();

// Prints "fskit: <message>" on standard error and returns kUsageError.
int usageError(std::string_view command, std::string_view message);
// Prints "fskit: <message>" on standard error and returns kFailed.
int failure(std::string_view command, std::string_view message);

// "<what>: <the system's reason for errno>" as a failure (kFailed).
int systemFailure(std::string_view command, std::string_view what, int error);

// From now on the library's messages (fsMessage) go to standard error, one
// line each, as "fskit COMMAND: text" ("fskit COMMAND: routine: text" for a
// message with a non-zero code). main() sets this up for every command.
void reportLibraryMessagesAs(std::string_view command);
// How many library messages have been reported so far.
int libraryMessagesShown();

// Standard input as a whole; false (with errno) when it cannot be read.
bool readStandardInput(std::string &text);
// Copies every byte of `from` to `to`; false (with errno) when it fails.
bool copyStream(std::FILE *from, std::FILE *to);

// `text` as a JSON string, quotes included.
std::string jsonText(std::string_view text);

// A table on standard output: tab-separated under a header line of the
// column names, or, with json, one JSON object per row keyed by those names.
class Table {
 public:
  struct Column {
    const char *name;
    bool number = false;  // written bare in JSON (a text that reads as a number)
  };
  Table(bool json, std::vector<Column> columns);
  void row(const std::vector<std::string> &cells) const;

 private:
  bool json_;
  std::vector<Column> columns_;
};

// Removes a flag (e.g. "--unique") from args; true when it was present.
bool takeFlag(std::vector<std::string> &args, std::string_view flag);

// Removes an option with its value ("--prefix P" or "--prefix=P") from args.
// Sets `missingValue` when the option is last and has no value.
std::optional<std::string> takeOption(std::vector<std::string> &args,
                                      std::string_view option, bool &missingValue);

// The directory of the running fskit program, its separator included;
// empty when the system does not tell.
std::string programDirectory();

// The first argument that starts with "--" (an unknown option), if any.
std::optional<std::string> unknownOption(const std::vector<std::string> &args);

}  // namespace fskit::tool
