// SPDX-License-Identifier: MIT
// Directory creation and removal, and the paths the directory services take.
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/platform.h"

namespace fskit::platform {

bool toHostPath(const char *path, char (&hostPath)[kHostPathSize]) {
  if (path == nullptr) {
    errno = EINVAL;
    return false;
  }
  size_t length = std::strlen(path);
  if (length >= kHostPathSize) {
    errno = ENAMETOOLONG;
    return false;
  }
  for (size_t i = 0; i <= length; ++i) hostPath[i] = path[i] == '\\' ? '/' : path[i];
  return true;
}

int _mkdirS(const char *path) {
  char hostPath[kHostPathSize];
  if (!toHostPath(path, hostPath)) return -1;
  if (::mkdir(hostPath, 0777) == 0) return 0;
  // Callers take EEXIST as "the directory is there"; a file of that name is not.
  struct stat status;
  if (errno == EEXIST && (::stat(hostPath, &status) != 0 || !S_ISDIR(status.st_mode)))
    errno = ENOTDIR;
  return -1;
}

int _rmdirS(const char *path) {
  char hostPath[kHostPathSize];
  if (!toHostPath(path, hostPath)) return -1;
  return ::rmdir(hostPath);
}

}  // namespace fskit::platform
