// SPDX-License-Identifier: MIT
// Helpers shared by the tag-table files.
#pragma once

#include <cstring>

namespace fskit::tags {

// Tags and labels keep at most 63 characters, so every text the lookups hand
// back fits in 64 bytes.
inline constexpr size_t kKept = 63;

// Copies at most `limit` characters of `src` and a NUL; `src` is read no
// further than `limit` bytes, so it may be a full field without a NUL.
inline void copyCut(char *dst, const char *src, size_t limit) {
  size_t n = strnlen(src, limit);
  std::memcpy(dst, src, n);
  dst[n] = '\0';
}

}  // namespace fskit::tags
