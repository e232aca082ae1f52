// SPDX-License-Identifier: MIT
// Where the running fskit program lies, from the system's own record of it.
#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
#endif

#include "tools/command.h"

namespace fskit::tool {

std::string programDirectory() {
  char self[4096];
#if defined(_WIN32)
  DWORD got = GetModuleFileNameA(nullptr, self, sizeof self);
  long length = got < sizeof self ? long(got) : 0;
#else
  long length = long(readlink("/proc/self/exe", self, sizeof self - 1));
#endif
  if (length <= 0) return {};
  std::string path(self, size_t(length));
  return path.erase(path.find_last_of("/\\") + 1);
}

}  // namespace fskit::tool
