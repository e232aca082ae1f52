// SPDX-License-Identifier: MIT
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include <fskit/frame.h>

#include "tools/command.h"

namespace fskit::tool {

namespace {

std::string messageCommand;
int messagesShown = 0;

int32_t messagesToStandardError(const char *routine, int32_t *count, int32_t *codes, int32_t *,
                                int32_t *, char **texts) {
  for (int32_t i = 0; count != nullptr && i < *count; ++i, ++messagesShown) {
    if (codes[i] == 0 || routine == nullptr || *routine == '\0')
      std::fprintf(stderr, "fskit %s: %s\n", messageCommand.c_str(), texts[i]);
    else
      std::fprintf(stderr, "fskit %s: %s: %s\n", messageCommand.c_str(), routine, texts[i]);
  }
  return 0;
}

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

int systemFailure(std::string_view command, std::string_view what, int error) {
  return failure(command, std::string(what) + ": " + std::strerror(error));
}

void reportLibraryMessagesAs(std::string_view command) {
  messageCommand = command;
  fsRegisterMessage(messagesToStandardError);
}

int libraryMessagesShown() { return messagesShown; }

bool copyStream(std::FILE *from, std::FILE *to) {
  char block[65536];
  while (size_t count = std::fread(block, 1, sizeof block, from))
    if (std::fwrite(block, 1, count, to) != count) return false;
  return std::ferror(from) == 0 && std::fflush(to) == 0;
}

bool readStandardInput(std::string &text) {
  char block[65536];
  while (size_t count = std::fread(block, 1, sizeof block, stdin)) text.append(block, count);
  return std::ferror(stdin) == 0;
}

std::string jsonText(std::string_view text) {
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

Table::Table(bool json, std::vector<Column> columns) : json_(json), columns_(std::move(columns)) {
  if (json_) return;
  std::string header;
  for (const Column &column : columns_) header += (header.empty() ? "" : "\t") + std::string(column.name);
  std::printf("%s\n", header.c_str());
}

void Table::row(const std::vector<std::string> &cells) const {
  std::string line = json_ ? "{" : "";
  for (size_t i = 0; i < cells.size() && i < columns_.size(); ++i) {
    if (!json_) {
      line += (i == 0 ? "" : "\t") + cells[i];
      continue;
    }
    line += (i == 0 ? "" : ",") + jsonText(columns_[i].name) + ":" +
            (columns_[i].number ? cells[i] : jsonText(cells[i]));
  }
  std::printf("%s%s\n", line.c_str(), json_ ? "}" : "");
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
