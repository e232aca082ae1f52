// SPDX-License-Identifier: MIT
// The platform query, the platform services that are empty here, and the
// shell escape.
#include <cstdlib>
#include <cstring>

#include <fskit/frame.h>

extern "C" {

FSKIT_API void fsGetPlatform(char *os, char *byteOrder, char *floatFormat) {
  if (os != nullptr) std::memcpy(os, "winnt", 6);
  if (byteOrder != nullptr) std::memcpy(byteOrder, "little", 7);
  if (floatFormat != nullptr) std::memcpy(floatFormat, "ieee", 5);
}

FSKIT_API void fsSecondsWait(...) {}
FSKIT_API void fsSetExtendSize(...) __attribute__((alias("fsSecondsWait")));

FSKIT_API int32_t fsDiskList(...) { return 0; }
FSKIT_API int32_t operatingSystemId(...) __attribute__((alias("fsDiskList")));
FSKIT_API int32_t fsGetenv(...) { return 0; }
FSKIT_API int32_t fsSetenv(...) { return 0; }
FSKIT_API int32_t fsDiskFreeSpace(...) { return 0; }

FSKIT_API void fsDiskListFree(int32_t count, char **list) {
  if (list == nullptr) return;
  for (int32_t i = 0; i < count; ++i) std::free(list[i]);
  std::free(list);
}

FSKIT_API int32_t systemNoWait(const char *command) {
  return int32_t(std::system(command));
}

}  // extern "C"
