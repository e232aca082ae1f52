// fsIniWriteFile: a regular file is replaced only by a complete new text, so
// that a failure half-way (a full disk, a quota) leaves the old file as it
// was; other targets are written in place.
#include <unistd.h>

#include <cstdio>

#include <fskit/ini.h>

#include "ini/state.h"
#include "platform/platform.h"

namespace fskit::ini {
namespace {

// Output errors may surface only when the buffer is flushed at the close.
bool writeAndClose(const FsIniFile &document, std::FILE *stream) {
  bool written = document.write(stream) == kOk;
  return std::fclose(stream) == 0 && written;
}

bool writeInPlace(const FsIniFile &document, const char *fileName) {
  std::FILE *stream = std::fopen(fileName, "w");
  if (stream == nullptr) {
    std::fprintf(stderr, "Error opening ini file %s\n", fileName);
    return false;
  }
  return writeAndClose(document, stream);
}

// A complete text that cannot be renamed over the file (a file mounted in
// its place, for one) is written into the file itself instead.
bool writeReplacement(const FsIniFile &document, const char *fileName,
                      platform::Replacement &replacement, int fd) {
  TemporaryOpener open = iniState().openTemporary.load();
  std::FILE *stream = open != nullptr ? open(fd) : fdopen(fd, "w");
  if (stream == nullptr) {
    close(fd);
    platform::abandonReplacement(replacement);
    return false;
  }
  if (!writeAndClose(document, stream)) {
    platform::abandonReplacement(replacement);
    return false;
  }
  return platform::commitReplacement(replacement) == 0 || writeInPlace(document, fileName);
}

}  // namespace
}  // namespace fskit::ini

extern "C" FSKIT_API int32_t fsIniWriteFile(int32_t handle) {
  using namespace fskit::ini;
  WriteHeld slot(handle);
  if (!slot) return 0;
  fskit::platform::Replacement replacement;
  int fd;
  bool written;
  switch (fskit::platform::beginReplacement(slot->fileName, replacement, fd)) {
    case fskit::platform::ReplaceStart::kReady:
      written = writeReplacement(*slot->document, slot->fileName, replacement, fd);
      break;
    case fskit::platform::ReplaceStart::kNotReplaceable:
      written = writeInPlace(*slot->document, slot->fileName);
      break;
    default:
      std::fprintf(stderr, "Error opening ini file %s\n", slot->fileName);
      written = false;
  }
  if (!written) return 0;
  releaseSlot(*slot);
  return 1;
}
