// SPDX-License-Identifier: MIT
// Directory creation and removal by the C runtime, paths as they are given.
#include <direct.h>
#include <windows.h>

#include <cerrno>

#include "platform/platform.h"

namespace fskit::platform {

int _mkdirS(const char *path) {
  if (::_mkdir(path) == 0) return 0;
  // _mkdir says EEXIST for a file of that name too; only a directory counts.
  DWORD attributes = GetFileAttributesA(path);
  if (errno == EEXIST &&
      (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY)))
    errno = ENOTDIR;
  return -1;
}

int _rmdirS(const char *path) { return ::_rmdir(path); }

}  // namespace fskit::platform
