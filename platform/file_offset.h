// SPDX-License-Identifier: MIT
// Stream positions as 64-bit offsets on every platform: the long that ftell
// and fseek use holds only 2 GiB on Windows and on 32-bit systems, where a
// large sort input or INI file would otherwise be misread past that point.
#pragma once

#include <cstdint>
#include <cstdio>

namespace fskit::platform {

using FileOffset = std::int64_t;

// The stream's position, or -1 with errno set.
inline FileOffset tellFile(std::FILE *stream) {
#if defined(_WIN32)
  return _ftelli64(stream);
#else
  return ftello(stream);  // 64-bit: the build sets _FILE_OFFSET_BITS=64
#endif
}

// fseek with a 64-bit offset: 0 on success, nonzero on failure.
inline int seekFile(std::FILE *stream, FileOffset offset, int origin) {
#if defined(_WIN32)
  return _fseeki64(stream, offset, origin);
#else
  return fseeko(stream, off_t(offset), origin);
#endif
}

}  // namespace fskit::platform
