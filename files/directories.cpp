// SPDX-License-Identifier: MIT
// Creating and removing directories.
#include <cerrno>
#include <cstring>

#include <fskit/files.h>

#include "platform/platform.h"

namespace {

// The longest path fsRemoveDirectory takes; a longer one is refused rather
// than cut, which could name another directory.
constexpr size_t kMaxRemovePath = 255;

}  // namespace

extern "C" {

FSKIT_API int32_t fsMakeDir(const char *path) {
  if (path == nullptr) return 0;
  if (fskit::platform::_mkdirS(path) == 0) return 1;
  return errno == EEXIST ? 1 : 0;
}

FSKIT_API int32_t fsRemoveDirectory(const char *path) {
  if (path == nullptr || std::strlen(path) > kMaxRemovePath) return 0;
  char copy[kMaxRemovePath + 1];
  std::strcpy(copy, path);
  return fskit::platform::_rmdirS(copy) == 0 ? 1 : 0;
}

}  // extern "C"
