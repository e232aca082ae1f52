// SPDX-License-Identifier: MIT
#include "tools/write_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "ini/files.h"

namespace fskit::tool {
namespace {

struct Source {
  std::string_view bytes;
  mutable int error = 0;  // what failed the write, before any clean-up could change errno
};

bool writeBytes(const void *source, std::FILE *stream) {
  const auto &from = *static_cast<const Source *>(source);
  if (std::fwrite(from.bytes.data(), 1, from.bytes.size(), stream) == from.bytes.size())
    return true;
  from.error = errno;
  return false;
}

}  // namespace

std::optional<std::string> writeWholeFile(const std::string &path, std::string_view bytes) {
  Source source{bytes};
  std::string familyMessage;  // the INI family's own words, not this tool's
  errno = 0;
  if (ini::replaceFile(path.c_str(), writeBytes, &source, true, &familyMessage))
    return std::nullopt;
  // An open, a close or a rename that failed left its reason in errno.
  int error = source.error != 0 ? source.error : errno;
  return "cannot write " + path + ": " + (error != 0 ? std::strerror(error) : "not written");
}

}  // namespace fskit::tool
