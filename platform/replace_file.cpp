// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"
#include "platform/temporary_name.h"

namespace fskit::platform {
namespace {

// Opens a new file beside `target` with a name nobody else uses, or -1.
int createBeside(const char *target, mode_t mode, char *&temporary) {
  const char *slash = std::strrchr(target, '/');
  size_t directoryLength = slash == nullptr ? 0 : size_t(slash - target) + 1;
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    temporary = temporaryNameBeside(target, directoryLength, long(getpid()));
    if (temporary == nullptr) return -1;
    int fd = open(temporary, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd >= 0) return fd;
    int error = errno;
    std::free(temporary);
    temporary = nullptr;
    if (error != EEXIST) break;
  }
  return -1;
}

// 1 when the directory of `target` may be written, 0 when not, -1 when there
// was no memory to name it (then nothing may be decided, least of all a
// write in place).
int writableDirectoryOf(const char *target) {
  const char *slash = std::strrchr(target, '/');
  if (slash == nullptr) return access(".", W_OK | X_OK) == 0;
  if (slash == target) return access("/", W_OK | X_OK) == 0;
  char *directory = copyOf(target);
  if (directory == nullptr) return -1;
  directory[slash - target] = '\0';
  bool writable = access(directory, W_OK | X_OK) == 0;
  std::free(directory);
  return writable;
}

}  // namespace

ReplaceStart beginReplacement(const char *path, Replacement &replacement, int &fd) {
  replacement = Replacement{};
  fd = -1;
  if (*path == '\0') return ReplaceStart::kNotReplaceable;  // let the open say why
  struct stat link, status;
  bool exists = lstat(path, &link) == 0;
  if (!exists && errno != ENOENT) return ReplaceStart::kNotReplaceable;
  if (exists) {
    // A dangling link, a device, a FIFO or a read-only file is written in
    // place; so is a file with further names (hard links), which a new file
    // renamed over this name would leave holding the old text.
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode) || access(path, W_OK) != 0 ||
        status.st_nlink > 1)
      return ReplaceStart::kNotReplaceable;
    replacement.target = S_ISLNK(link.st_mode) ? realpath(path, nullptr) : copyOf(path);
  } else {
    replacement.target = copyOf(path);
  }
  if (replacement.target == nullptr) return ReplaceStart::kFailed;
  if (int writable = writableDirectoryOf(replacement.target); writable != 1) {
    abandonReplacement(replacement);
    return writable < 0 ? ReplaceStart::kFailed : ReplaceStart::kNotReplaceable;
  }
  // A new file gets what the process's umask allows, as with fopen; an old
  // one's bits are put on the replacement before anything is written to it.
  fd = createBeside(replacement.target, exists ? S_IRUSR | S_IWUSR : 0666,
                    replacement.temporary);
  if (fd < 0) {
    abandonReplacement(replacement);
    return ReplaceStart::kFailed;
  }
  if (exists) {
    // Another's file (or one of a group that is not ours) cannot be given
    // its owner back: it is written in place, so that it keeps them.
    if (fchown(fd, status.st_uid, status.st_gid) != 0) {
      close(fd);
      fd = -1;
      abandonReplacement(replacement);
      return ReplaceStart::kNotReplaceable;
    }
    if (fchmod(fd, status.st_mode & 07777) != 0) {
      close(fd);
      fd = -1;
      abandonReplacement(replacement);
      return ReplaceStart::kFailed;
    }
  }
  return ReplaceStart::kReady;
}

int commitReplacement(Replacement &replacement) {
  int result = rename(replacement.temporary, replacement.target) == 0 ? 0 : -1;
  if (result == 0) {
    std::free(replacement.temporary);
    replacement.temporary = nullptr;
  }
  abandonReplacement(replacement);
  return result;
}

void abandonReplacement(Replacement &replacement) {
  if (replacement.temporary != nullptr) unlink(replacement.temporary);
  std::free(replacement.temporary);
  std::free(replacement.target);
  replacement = Replacement{};
}

}  // namespace fskit::platform
