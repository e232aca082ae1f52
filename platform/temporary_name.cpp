// SPDX-License-Identifier: MIT
#include "platform/temporary_name.h"

#if defined(_WIN32)
#include <direct.h>
#include <process.h>
#else
#include <stdlib.h>
#endif

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"

namespace fskit::platform {
namespace {
// Part of the target's base name kept in the temporary name, short enough
// that the temporary name fits where the target's fits.
constexpr int kBaseNameKept = 200;
// Threads writing files side by side each take a number of their own.
constinit std::atomic<unsigned> counter{0};
}  // namespace

char *copyOf(const char *text) {
  size_t size = std::strlen(text) + 1;
  char *copy = static_cast<char *>(std::malloc(size));
  if (copy != nullptr) std::memcpy(copy, text, size);
  return copy;
}

char *temporaryNameBeside(const char *target, size_t directoryLength, long process) {
  size_t size = directoryLength + kBaseNameKept + 64;
  char *name = static_cast<char *>(std::malloc(size));
  if (name != nullptr)
    std::snprintf(name, size, "%.*s.%.*s.%ld-%u.tmp", int(directoryLength), target, kBaseNameKept,
                  target + directoryLength, process,
                  counter.fetch_add(1, std::memory_order_relaxed));
  return name;
}

char *makePrivateDirectory(const char *parent) {
  size_t size = std::strlen(parent) + 64;
  char *path = static_cast<char *>(std::malloc(size));
  if (path == nullptr) return nullptr;
#if defined(_WIN32)
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    std::snprintf(path, size, "%s\\fskit-%ld-%u", parent, long(::_getpid()),
                  counter.fetch_add(1, std::memory_order_relaxed));
    if (::_mkdir(path) == 0) return path;
    if (errno != EEXIST) break;
  }
#else
  std::snprintf(path, size, "%s/fskit-XXXXXX", parent);
  if (mkdtemp(path) != nullptr) return path;
#endif
  int error = errno;
  std::free(path);
  errno = error;
  return nullptr;
}

}  // namespace fskit::platform
