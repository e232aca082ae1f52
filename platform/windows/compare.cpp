// SPDX-License-Identifier: MIT
// The C runtime's own case-insensitive comparisons. Its "C" locale, which a
// program has unless it calls setlocale, changes the case of A-Z only.
#include <cstring>

#include "platform/platform.h"

namespace fskit::platform {

int _stricmp(const char *a, const char *b) { return ::_stricmp(a, b); }

int _strnicmp(const char *a, const char *b, unsigned long n) { return ::_strnicmp(a, b, n); }

}  // namespace fskit::platform
