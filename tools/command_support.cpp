// SPDX-License-Identifier: MIT
#include <cstdio>

#include "tools/command.h"

namespace fskit::tool {

namespace {
int report(std::string_view command, std::string_view message, int status) {
  if (command.empty())
    std::fprintf(stderr, "fskit: %.*s\n", int(message.size()), message.data());
  else
    std::fprintf(stderr, "fskit %.*s: %.*s\n", int(command.size()), command.data(),
                 int(message.size()), message.data());
  return status;
}
}  // namespace

int usageError(std::string_view command, std::string_view message) {
  return report(command, message, kUsageError);
}

int failure(std::string_view command, std::string_view message) {
  return report(command, message, kFailed);
}

bool takeFlag(std::vector<std::string> &args, std::string_view flag) {
  for (auto it = args.begin(); it != args.end(); ++it) {
    if (*it == "--") return false;
    if (*it == flag) {
      args.erase(it);
      return true;
    }
  }
  return false;
}

std::optional<std::string> takeOption(std::vector<std::string> &args,
                                      std::string_view option, bool &missingValue) {
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string &arg = args[i];
    if (arg == "--") break;
    if (arg == option) {
      if (i + 1 == args.size()) {
        missingValue = true;
        args.erase(args.begin() + long(i));
        return std::nullopt;
      }
      std::string value = args[i + 1];
      args.erase(args.begin() + long(i), args.begin() + long(i) + 2);
      return value;
    }
    if (arg.size() > option.size() && arg.compare(0, option.size(), option) == 0 &&
        arg[option.size()] == '=') {
      std::string value = arg.substr(option.size() + 1);
      args.erase(args.begin() + long(i));
      return value;
    }
  }
  return std::nullopt;
}

std::optional<std::string> unknownOption(const std::vector<std::string> &args) {
  for (const auto &arg : args) {
    if (arg == "--") break;
    if (arg.size() > 2 && arg.compare(0, 2, "--") == 0) return arg;
  }
  return std::nullopt;
}

}  // namespace fskit::tool
