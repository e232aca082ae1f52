// SPDX-License-Identifier: MIT
// kwaCmdLnStr: a program's arguments joined back into one line.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fskit/cmdline.h>
#include <fskit/frame.h>

extern "C" {

FSKIT_API char *kwaCmdLnStr(int32_t argc, char *const *argv, int32_t *length) {
  if (argc < 2 || argv == nullptr) return strmalloc("");
  // Summed in 64 bits: the size must also fit the 32-bit length handed back.
  uint64_t size = uint64_t(argc);
  for (int32_t i = 1; i < argc; ++i)
    if (argv[i] != nullptr) size += std::strlen(argv[i]);
  char *line = size <= INT32_MAX ? strnmalloc("", uint32_t(size)) : nullptr;
  if (line == nullptr) {
    // The library's only exit: callers of this function have no way to go on.
    std::fprintf(stderr, "Out of memory in kwaCmdLnStr()\n");
    std::exit(1);
  }
  char *end = line;
  for (int32_t i = 1; i < argc; ++i) {
    if (i > 1) *end++ = ' ';
    if (argv[i] == nullptr) continue;
    size_t n = std::strlen(argv[i]);
    std::memcpy(end, argv[i], n);
    end += n;
  }
  *end = '\0';
  if (length != nullptr) *length = int32_t(size);
  return line;
}

}  // extern "C"
