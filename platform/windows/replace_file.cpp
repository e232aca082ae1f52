// SPDX-License-Identifier: MIT
// Replacing a file on Windows: the new text goes to a temporary file beside
// the target, opened in text mode like the target's own fopen(..., "w")
// would be, and ReplaceFile then puts it in the target's place, keeping the
// target's attributes and security; a target that did not exist is moved in.
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>
#include <windows.h>

#include <cerrno>
#include <cstdlib>

#include "platform/platform.h"
#include "platform/temporary_name.h"

namespace fskit::platform {
namespace {

// Length of the directory part of `path`, separator included: up to the
// last slash or backslash, or past a drive's colon.
size_t directoryLength(const char *path) {
  size_t length = 0;
  for (size_t i = 0; path[i] != '\0'; ++i)
    if (path[i] == '/' || path[i] == '\\' || (i == 1 && path[i] == ':')) length = i + 1;
  return length;
}

// Opens a new file beside `target` with a name nobody else uses, or -1;
// `denied` tells that the directory refused it.
int createBeside(const char *target, char *&temporary, bool &denied) {
  size_t prefix = directoryLength(target);
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    temporary = temporaryNameBeside(target, prefix, long(::_getpid()));
    if (temporary == nullptr) return -1;
    int fd = ::_open(temporary, _O_WRONLY | _O_CREAT | _O_EXCL | _O_TEXT | _O_NOINHERIT,
                     _S_IREAD | _S_IWRITE);
    if (fd >= 0) return fd;
    int error = errno;
    std::free(temporary);
    temporary = nullptr;
    if (error != EEXIST) {
      denied = error == EACCES;
      break;
    }
  }
  return -1;
}

// True when the file has more than one name (hard links): a new file put in
// place of this name would leave the others holding the old text, so it is
// written in place instead.
bool hasFurtherNames(const char *path) {
  HANDLE file = CreateFileA(path, FILE_READ_ATTRIBUTES,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  BY_HANDLE_FILE_INFORMATION information;
  bool further = GetFileInformationByHandle(file, &information) && information.nNumberOfLinks > 1;
  CloseHandle(file);
  return further;
}

}  // namespace

ReplaceStart beginReplacement(const char *path, Replacement &replacement, int &fd) {
  replacement = Replacement{};
  fd = -1;
  if (*path == '\0') return ReplaceStart::kNotReplaceable;  // let the open say why
  DWORD attributes = GetFileAttributesA(path);
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    // A missing file is made new; a bad name or a device is left to fopen.
    if (GetLastError() != ERROR_FILE_NOT_FOUND) return ReplaceStart::kNotReplaceable;
  } else if (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY |
                           FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_REPARSE_POINT)) {
    // A link is written through in place rather than replaced by a file.
    return ReplaceStart::kNotReplaceable;
  } else if (hasFurtherNames(path)) {
    return ReplaceStart::kNotReplaceable;
  }
  replacement.target = copyOf(path);
  if (replacement.target == nullptr) return ReplaceStart::kFailed;
  bool denied = false;
  fd = createBeside(replacement.target, replacement.temporary, denied);
  if (fd < 0) {
    abandonReplacement(replacement);
    return denied ? ReplaceStart::kNotReplaceable : ReplaceStart::kFailed;
  }
  return ReplaceStart::kReady;
}

int commitReplacement(Replacement &replacement) {
  bool moved = ReplaceFileA(replacement.target, replacement.temporary, nullptr,
                            REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) ||
               MoveFileExA(replacement.temporary, replacement.target,
                           MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
  if (moved) {
    std::free(replacement.temporary);
    replacement.temporary = nullptr;
  }
  abandonReplacement(replacement);
  return moved ? 0 : -1;
}

void abandonReplacement(Replacement &replacement) {
  if (replacement.temporary != nullptr) ::_unlink(replacement.temporary);
  std::free(replacement.temporary);
  std::free(replacement.target);
  replacement = Replacement{};
}

}  // namespace fskit::platform
