// SPDX-License-Identifier: MIT
// Opening and closing files with printable error texts, existence and size.
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <cwchar>

#include <fskit/files.h>
#include <fskit/frame.h>

#include "platform/file_offset.h"
#include "platform/platform.h"

namespace {

// The size of an error text, as the header documents it.
constexpr size_t kErrTextSize = 80;

// "%d %s" into the caller's 80 bytes. A translated system text may be longer:
// it is cut at a whole character (as the current locale encodes them) so
// that the number and as much of the text as fits are kept.
void writeError(char *errText, int error, const char *text) {
  if (errText == nullptr) return;
  int written = std::snprintf(errText, kErrTextSize, "%d ", error);
  if (written < 0 || size_t(written) >= kErrTextSize) return;
  size_t room = kErrTextSize - 1 - size_t(written), length = 0;
  std::mbstate_t state{};
  for (size_t left = std::strlen(text); length < left;) {
    size_t step = std::mbrlen(text + length, left - length, &state);
    if (step == 0 || step > left - length) {  // not a character here: one byte
      step = 1;
      state = std::mbstate_t{};
    }
    if (length + step > room) break;
    length += step;
  }
  std::memcpy(errText + written, text, length);
  errText[size_t(written) + length] = '\0';
}

void writeError(char *errText, int error) {
  char buffer[256];
  writeError(errText, error, fskit::platform::errorText(error, buffer, sizeof buffer));
}

}  // namespace

extern "C" {

FSKIT_API int32_t fsFileExists(const char *path) {
  struct stat status;
  return path != nullptr && fskit::platform::_stat(path, &status) == 0 ? 1 : 0;
}

FSKIT_API int32_t fsFileOpen(const char *path, const char *mode, FsFile *file, char *errText) {
  if (file == nullptr) return 0;
  errno = EINVAL;
  file->stream = path != nullptr && mode != nullptr ? std::fopen(path, mode) : nullptr;
  if (file->stream == nullptr) {
    int error = errno;
    fsFree(&file->name);
    writeError(errText, error);
    return 0;
  }
  file->name = strrealloc(file->name, path);
  if (file->name == nullptr) {
    std::fclose(file->stream);
    file->stream = nullptr;
    writeError(errText, ENOMEM, "Not enough memory");
    return 0;
  }
  file->user = 0;
  return 1;
}

FSKIT_API int32_t fsFileClose(FsFile *file, char *errText) {
  if (file == nullptr) return 0;
  int32_t closed = 0;
  if (file->stream != nullptr) {
    closed = std::fclose(file->stream) == 0 ? 1 : 0;
    if (!closed) writeError(errText, errno);
  }
  fsFree(&file->name);
  *file = FsFile{};
  return closed;
}

FSKIT_API int32_t fsFileSize(FILE *stream) {
  if (stream == nullptr) return -1;
  fskit::platform::seekFile(stream, 0, SEEK_END);
  const fskit::platform::FileOffset size = fskit::platform::tellFile(stream);
  fskit::platform::seekFile(stream, 0, SEEK_SET);
  return size > INT32_MAX ? -1 : static_cast<int32_t>(size);
}

}  // extern "C"
