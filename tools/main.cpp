// SPDX-License-Identifier: MIT
// fskit: the library's main jobs at the command line.
#include <cstdio>
#include <cstring>

#include "tools/command.h"

namespace {

using fskit::tool::Command;
using fskit::tool::commands;

void printOverview(std::FILE *out) {
  std::fprintf(out,
               "usage: fskit COMMAND [ARGUMENTS...]\n"
               "       fskit COMMAND --help\n"
               "       fskit --version\n\ncommands:\n");
  for (const Command &command : commands())
    std::fprintf(out, "  %-10s %s\n", command.name, command.summary);
}

const Command *findCommand(const char *name) {
  for (const Command &command : commands())
    if (std::strcmp(command.name, name) == 0) return &command;
  return nullptr;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 2) return fskit::tool::usageError("", "no command given (try 'fskit --help')");
  const char *name = argv[1];
  if (std::strcmp(name, "--help") == 0 || std::strcmp(name, "-h") == 0 ||
      std::strcmp(name, "help") == 0) {
    printOverview(stdout);
    return fskit::tool::kOk;
  }
  // --version is the conventional spelling of the version command.
  if (std::strcmp(name, "--version") == 0) name = "version";
  const Command *command = findCommand(name);
  if (command == nullptr)
    return fskit::tool::usageError("", std::string("unknown command '") + name +
                                           "' (try 'fskit --help')");
  std::vector<std::string> args(argv + 2, argv + argc);
  if (fskit::tool::takeFlag(args, "--help")) {
    std::fputs(command->help, stdout);
    return fskit::tool::kOk;
  }
  // The library's messages are diagnostics: standard error, naming the command.
  fskit::tool::reportLibraryMessagesAs(command->name);
  return command->run(args);
}
