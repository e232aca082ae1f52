// SPDX-License-Identifier: MIT
// The allocation helpers that hand texts to callers, and their release.
// Every block comes from malloc so that callers free it with fsFree().
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include <fskit/frame.h>

extern "C" {

FSKIT_API char *strmalloc(const char *s) {
  if (s == nullptr) return nullptr;
  size_t size = std::strlen(s) + 1;
  char *copy = static_cast<char *>(std::malloc(size));
  if (copy != nullptr) std::memcpy(copy, s, size);
  return copy;
}

FSKIT_API char *strnmalloc(const char *s, uint32_t size) {
  if (s == nullptr || size == 0) return nullptr;
  char *copy = static_cast<char *>(std::malloc(size));
  if (copy == nullptr) return nullptr;
  std::strncpy(copy, s, size - 1);
  copy[size - 1] = '\0';
  return copy;
}

FSKIT_API char *strrealloc(char *old, const char *s) {
  if (s == nullptr) s = "";
  // Copied before `old` goes: `s` may lie inside it.
  char *copy = strmalloc(s);
  if (old != s) std::free(old);
  return copy;
}

FSKIT_API char *strrealloc2(char *old, const char *first, ...) {
  size_t size = 1;
  if (first != nullptr) {
    size += std::strlen(first);
    va_list args;
    va_start(args, first);
    while (const char *next = va_arg(args, const char *)) size += std::strlen(next);
    va_end(args);
  }
  char *joined = static_cast<char *>(std::malloc(size));
  if (joined == nullptr) return nullptr;
  char *end = joined;
  if (first != nullptr) {
    size_t length = std::strlen(first);
    std::memcpy(end, first, length);
    end += length;
    va_list args;
    va_start(args, first);
    while (const char *next = va_arg(args, const char *)) {
      length = std::strlen(next);
      std::memcpy(end, next, length);
      end += length;
    }
    va_end(args);
  }
  *end = '\0';
  // Released only now: `old` may be one of the texts just joined.
  std::free(old);
  return joined;
}

FSKIT_API void fsFree(void *p) {
  void **variable = static_cast<void **>(p);
  if (variable != nullptr && *variable != nullptr) {
    std::free(*variable);
    *variable = nullptr;
  }
}

FSKIT_API void strfree(void *p) __attribute__((alias("fsFree")));

}  // extern "C"
