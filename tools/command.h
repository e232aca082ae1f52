// SPDX-License-Identifier: MIT
// The fskit tool's commands and the small helpers they share.
#pragma once

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
