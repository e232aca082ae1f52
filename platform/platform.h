// The thin layer between the library and the operating system. The library's
// own code reaches the platform only through these names, which are those of
// the original platform; a Windows build maps them back to the real calls.
// Nothing here is exported.
#pragma once

#include <sys/stat.h>

namespace fskit::platform {

// Case-insensitive comparisons with the default C locale's case rules.
int _stricmp(const char *a, const char *b);
int _strnicmp(const char *a, const char *b, unsigned long n);

// File status; 0 on success, -1 with errno set on failure.
int _stat(const char *path, struct stat *status);

// Registers `fn` to run when the library is unloaded or the process ends.
// Returns `fn`, or null when it could not be registered.
using OnExitFunction = int (*)();
OnExitFunction _onexit(OnExitFunction fn);

// One code from standard input without echo or line buffering (raw mode for
// the call when it is a terminal, Enter giving 13). A terminal's cursor,
// editing and function keys come back as two codes, 0 or 224 and then the
// key's console code; a lone Escape is 27, end of input 4.
int _getch();

}  // namespace fskit::platform
