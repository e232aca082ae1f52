#include "platform/temporary_name.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace fskit::platform {
namespace {
// Part of the target's base name kept in the temporary name, short enough
// that the temporary name fits where the target's fits.
constexpr int kBaseNameKept = 200;
}  // namespace

char *copyOf(const char *text) {
  size_t size = std::strlen(text) + 1;
  char *copy = static_cast<char *>(std::malloc(size));
  if (copy != nullptr) std::memcpy(copy, text, size);
  return copy;
}

namespace {
// Threads writing files side by side each take a number of their own.
constinit std::atomic<unsigned> counter{0};
}  // namespace

char *temporaryNameBeside(const char *target, size_t directoryLength, long process) {
  size_t size = directoryLength + kBaseNameKept + 64;
  char *name = static_cast<char *>(std::malloc(size));
  if (name != nullptr)
    std::snprintf(name, size, "%.*s.%.*s.%ld-%u.tmp", int(directoryLength), target, kBaseNameKept,
                  target + directoryLength, process,
                  counter.fetch_add(1, std::memory_order_relaxed));
  return name;
}

}  // namespace fskit::platform
