// SPDX-License-Identifier: MIT
// Loading and storing the words of the foreign formats. Foreign byte orders
// are turned into the host's through std::endian, so the code is right on a
// host of either byte order; every access goes through memcpy, which makes it
// safe at any alignment (the Quor mass word sits at offset 2 of its record)
// and compiles to one load or store, with a byte swap where orders differ.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace fskit::numformat {

inline const unsigned char *bytes(const void *p) {
  return static_cast<const unsigned char *>(p);
}
inline unsigned char *bytes(void *p) { return static_cast<unsigned char *>(p); }

// The host's own order (native integers and IEEE numbers).
template <typename T>
inline T loadHost(const void *p) {
  T value;
  std::memcpy(&value, p, sizeof value);
  return value;
}
template <typename T>
inline void storeHost(void *p, T value) {
  std::memcpy(p, &value, sizeof value);
}

inline uint16_t byteSwap(uint16_t v) { return __builtin_bswap16(v); }
inline uint32_t byteSwap(uint32_t v) { return __builtin_bswap32(v); }
inline uint64_t byteSwap(uint64_t v) { return __builtin_bswap64(v); }

// Between the host's order and a fixed one; the same swap serves both ways.
template <typename T>
inline T littleToHost(T v) {
  if constexpr (std::endian::native == std::endian::little) return v;
  else return byteSwap(v);
}
template <typename T>
inline T bigToHost(T v) {
  if constexpr (std::endian::native == std::endian::big) return v;
  else return byteSwap(v);
}

template <typename T>
inline T loadLittle(const void *p) { return littleToHost(loadHost<T>(p)); }
template <typename T>
inline void storeLittle(void *p, T value) { storeHost(p, littleToHost(value)); }
template <typename T>
inline T loadBig(const void *p) { return bigToHost(loadHost<T>(p)); }

// Where a converter writes: the destination, or over the source without one.
inline void *target(void *source, void *destination) {
  return destination != nullptr ? destination : source;
}

}  // namespace fskit::numformat
