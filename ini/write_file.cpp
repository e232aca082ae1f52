// SPDX-License-Identifier: MIT
// Writing files, for fsIniWriteFile and the lossless documents: a regular
// file is replaced only by a complete new text, so that a failure half-way (a
// full disk, a quota) leaves the old file as it was; other targets are
// written in place.
#include <unistd.h>
#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

#include <cstdio>

#include <fskit/ini.h>

#include "ini/files.h"
#include "ini/state.h"
#include "platform/platform.h"

namespace fskit::ini {
namespace {

// The one message of a file that cannot be opened: on standard error, or
// into `problem` for a caller that reports it its own way.
void cannotOpen(const char *fileName, std::string *problem) {
  if (problem != nullptr)
    *problem = std::string("Error opening ini file ") + fileName;
  else
    std::fprintf(stderr, "Error opening ini file %s\n", fileName);
}

// Output errors may surface only when the buffer is flushed at the close.
bool writeAndClose(TextWriter write, const void *source, std::FILE *stream) {
  bool written = write(source, stream);
  return std::fclose(stream) == 0 && written;
}

bool writeInPlace(const char *fileName, TextWriter write, const void *source, bool binary,
                  std::string *problem) {
  std::FILE *stream = std::fopen(fileName, binary ? "wb" : "w");
  if (stream == nullptr) {
    cannotOpen(fileName, problem);
    return false;
  }
  return writeAndClose(write, source, stream);
}

// A complete text that cannot be renamed over the file (a file mounted in
// its place, for one) is written into the file itself instead.
bool writeReplacement(const char *fileName, TextWriter write, const void *source, bool binary,
                      platform::Replacement &replacement, int fd, std::string *problem) {
#if defined(_WIN32)
  if (binary) _setmode(fd, _O_BINARY);
#endif
  std::FILE *stream = fdopen(fd, binary ? "wb" : "w");
  if (stream == nullptr) {
    close(fd);
    platform::abandonReplacement(replacement);
    return false;
  }
  if (!writeAndClose(write, source, stream)) {
    platform::abandonReplacement(replacement);
    return false;
  }
  return platform::commitReplacement(replacement) == 0 ||
         writeInPlace(fileName, write, source, binary, problem);
}

bool writeDocument(const void *document, std::FILE *stream) {
  return static_cast<const FsIniFile *>(document)->write(stream) == kOk;
}

}  // namespace

bool replaceFile(const char *fileName, TextWriter write, const void *source, bool binary,
                 std::string *problem) {
  platform::Replacement replacement;
  int fd;
  switch (platform::beginReplacement(fileName, replacement, fd)) {
    case platform::ReplaceStart::kReady:
      return writeReplacement(fileName, write, source, binary, replacement, fd, problem);
    case platform::ReplaceStart::kNotReplaceable:
      return writeInPlace(fileName, write, source, binary, problem);
    default:
      cannotOpen(fileName, problem);
      return false;
  }
}

}  // namespace fskit::ini

extern "C" FSKIT_API int32_t fsIniWriteFile(int32_t handle) {
  using namespace fskit::ini;
  WriteHeld slot(handle);
  if (!slot) return 0;
  if (!replaceFile(slot->fileName, writeDocument, slot->document, false)) return 0;
  releaseSlot(*slot);
  return 1;
}
