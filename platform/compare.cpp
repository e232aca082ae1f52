// SPDX-License-Identifier: MIT
#include "platform/ascii.h"
#include "platform/platform.h"

namespace fskit::platform {

int _strnicmp(const char *a, const char *b, unsigned long n) {
  for (unsigned long i = 0; i < n; ++i) {
    int ca = ascii::byte(ascii::toLower(a[i]));
    int cb = ascii::byte(ascii::toLower(b[i]));
    if (ca != cb) return ca - cb;
    if (ca == 0) return 0;
  }
  return 0;
}

int _stricmp(const char *a, const char *b) { return _strnicmp(a, b, ~0UL); }

}  // namespace fskit::platform
