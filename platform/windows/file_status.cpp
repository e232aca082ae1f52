// SPDX-License-Identifier: MIT
// The C runtime's _stat, whose record has the fields of struct stat under
// other types; copied field by field rather than cast.
#include "platform/platform.h"

namespace fskit::platform {

int _stat(const char *path, struct stat *status) {
  struct ::_stat found;
  if (::_stat(path, &found) != 0) return -1;
  *status = {};
  status->st_dev = found.st_dev;
  status->st_ino = found.st_ino;
  status->st_mode = found.st_mode;
  status->st_nlink = found.st_nlink;
  status->st_uid = found.st_uid;
  status->st_gid = found.st_gid;
  status->st_rdev = found.st_rdev;
  status->st_size = found.st_size;
  status->st_atime = found.st_atime;
  status->st_mtime = found.st_mtime;
  status->st_ctime = found.st_ctime;
  return 0;
}

}  // namespace fskit::platform
