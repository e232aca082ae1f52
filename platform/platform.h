// SPDX-License-Identifier: MIT
// The thin layer between the library and the operating system. The library's
// own code reaches the platform only through these names, which are those of
// the original platform; a Windows build maps them back to the real calls
// (platform/windows/). Nothing here is exported.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>

namespace fskit::platform {

// Case-insensitive comparisons with the default C locale's case rules.
int _stricmp(const char *a, const char *b);
int _strnicmp(const char *a, const char *b, unsigned long n);

// File status; 0 on success, -1 with errno set on failure.
int _stat(const char *path, struct stat *status);

// Registers `fn` to run when the library is unloaded or the process ends
// (for fskit.dll: when it is detached from the process). Returns `fn`, or
// null when it could not be registered; a function registered again runs once.
using OnExitFunction = int (*)();
OnExitFunction _onexit(OnExitFunction fn);

// One code from standard input without echo or line buffering (raw mode for
// the call when it is a terminal, Enter giving 13). A terminal's cursor,
// editing and function keys come back as two codes, 0 or 224 and then the
// key's console code; a lone Escape is 27, end of input 4. On Windows the
// console's own _getch when standard input is the console, else its bytes
// as they are.
int _getch();

// fputs for a stream that only the caller uses: without locking it call by
// call where the C library allows that.
inline int putText(const char *text, std::FILE *stream) {
#if defined(_WIN32)
  return std::fputs(text, stream);
#else
  return fputs_unlocked(text, stream);
#endif
}

// The local time of `seconds` into `local`; false when the system cannot
// represent it. Safe from any thread (no shared result buffer).
bool localTime(std::time_t seconds, std::tm &local);

// The C runtime's asctime text of `time` ("Sun Sep  9 01:03:52 1973\n"; on
// Windows the day has two digits, "Sep 09") written into `text`: 64 bytes
// hold it for every year an int holds. False when the year does not fit.
inline constexpr size_t kAscTimeSize = 64;
bool ascTime(const std::tm &time, char (&text)[kAscTimeSize]);

// The system's text for error number `error`, as strerror gives it, made in
// `buffer` where the system needs room (never shared between threads).
const char *errorText(int error, char *buffer, size_t size);

// Holds a stream's lock for a scope, so that several writes reach it
// together even while other threads write to it.
class StreamLock {
 public:
  explicit StreamLock(std::FILE *stream);
  ~StreamLock();
  StreamLock(const StreamLock &) = delete;
  StreamLock &operator=(const StreamLock &) = delete;

 private:
  std::FILE *stream_;
};

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
  kNotReplaceable,  // not a regular file, not writable, more than one name or
                    // another's: write it in place
  kFailed,          // replaceable, but no temporary file could be made
};

// Starts replacing `path` when it is a writable regular file with no other
// name (whose owner a new file can be given), or does not exist, in a
// writable directory. When kReady, `fd` is the temporary file,
// opened for writing with the target's permission bits (and owner, where
// allowed), or those a new file would get (on Windows: in text mode, and the
// target's attributes are kept when it is replaced); finish with
// commitReplacement() or abandonReplacement().
ReplaceStart beginReplacement(const char *path, Replacement &replacement, int &fd);
// Renames the temporary file over the target: 0 done, -1 failed (the
// temporary file is then removed).
int commitReplacement(Replacement &replacement);
// Removes the temporary file; the target stays as it was.
void abandonReplacement(Replacement &replacement);

// Makes a new directory inside `parent` that no one else uses (mode 0700
// where the system has modes) and returns its malloc'ed path, or null with
// errno set.
char *makePrivateDirectory(const char *parent);

// Directory services. Every path and pattern given to them may use `\` as
// well as `/` to separate directories: on Windows both are the system's own,
// and the paths go to it as they are.

#if !defined(_WIN32)
// Room for a path of the host (PATH_MAX) with its terminator.
inline constexpr size_t kHostPathSize = 4096;
// Copies `path` into `hostPath` with every `\` turned into `/`; false, with
// errno ENAMETOOLONG, when it does not fit in kHostPathSize bytes (EINVAL for
// a null path).
bool toHostPath(const char *path, char (&hostPath)[kHostPathSize]);
#endif

// The record a directory search fills, laid out byte for byte as the original
// platform's (318 bytes, cFileName at offset 44). Only cFileName is filled
// (on Windows: every field, as the system fills its own record).
struct __attribute__((packed)) FindData {
  uint32_t dwFileAttributes;
  uint32_t ftCreationTime[2];
  uint32_t ftLastAccessTime[2];
  uint32_t ftLastWriteTime[2];
  uint32_t nFileSizeHigh;
  uint32_t nFileSizeLow;
  uint32_t dwReserved0;
  uint32_t dwReserved1;
  char cFileName[260];
  char cAlternateFileName[14];
};
static_assert(sizeof(FindData) == 318 && offsetof(FindData, cFileName) == 44);

// A search handle; kNoSearch (all bits set) when nothing matched or the search
// could not be made.
using SearchHandle = intptr_t;
inline constexpr SearchHandle kNoSearch = -1;

// Starts a search for the names that the last component of `pattern` matches
// in the directory the rest names (the current one when there is none). The
// last component is matched case-sensitively: `*` any run of characters, `?`
// any one, and a final ".*" also matches a name without a dot (on Windows:
// by FindFirstFileA's rules, without regard to case). On success the first
// name is in data->cFileName.
SearchHandle FindFirstFileSA(const char *pattern, FindData *data);
// Puts the next matching name in data->cFileName: non-zero, or 0 at the end.
int FindNextFileSA(SearchHandle search, FindData *data);
// Ends a search started by FindFirstFileSA. 0 for kNoSearch, else non-zero.
int FindCloseS(SearchHandle search);

// Creates (removes) a directory: 0, or -1 with errno set. _mkdirS sets EEXIST
// only when a directory of that name exists (ENOTDIR when it is another file).
int _mkdirS(const char *path);
int _rmdirS(const char *path);

}  // namespace fskit::platform
