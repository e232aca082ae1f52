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

}  // namespace fskit::platform

namespace fskit::platform {

// Replacing a file so that it is never left half-written: the new contents
// go to a temporary file in the target's directory, which is then renamed
// over the target.
struct Replacement {
  char *target = nullptr;     // the file replaced (a symbolic link followed)
  char *temporary = nullptr;  // null once renamed or removed
};

enum class ReplaceStart {
  kReady,           // the temporary file is open for writing
  kNotReplaceable,  // not a regular file or not writable: write it in place
  kFailed,          // replaceable, but no temporary file could be made
};

// Starts replacing `path` when it is a writable regular file, or does not
// exist, in a writable directory. When kReady, `fd` is the temporary file,
// opened for writing with the target's permission bits (and owner, where
// allowed), or those a new file would get; finish with commitReplacement()
// or abandonReplacement().
ReplaceStart beginReplacement(const char *path, Replacement &replacement, int &fd);
// Renames the temporary file over the target: 0 done, -1 failed (the
// temporary file is then removed).
int commitReplacement(Replacement &replacement);
// Removes the temporary file; the target stays as it was.
void abandonReplacement(Replacement &replacement);

}  // namespace fskit::platform
