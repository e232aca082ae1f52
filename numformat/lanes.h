// SPDX-License-Identifier: MIT
// 32-bit lanes, for the array converters: the same kernel code runs on one
// value (uint32_t) or on four or eight at once (Lanes, WideLanes), so the
// arrays give bit for bit what the one-value converters give. Built on the compilers' vector
// extensions (GCC, clang), which every x86-64 target has as SSE2; elsewhere
// (32-bit x86 without SSE2, hosts of the other byte order) only the one-value
// form exists and the arrays run it in a plain loop.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

// x86 hosts with SSE2 (every x86-64 one); they are little-endian.
#if defined(__SSE2__) && defined(__GNUC__)
#  define FSKIT_NUMFORMAT_LANES 1
#else
#  define FSKIT_NUMFORMAT_LANES 0
#endif

namespace fskit::numformat::lanes {

// A comparison's result as a mask: all ones for true.
inline uint32_t maskOf(bool condition) { return 0u - uint32_t(condition); }

inline float asFloat(uint32_t bits) { return std::bit_cast<float>(bits); }
inline uint32_t bitsOf(float value) { return std::bit_cast<uint32_t>(value); }
inline int32_t asSigned(uint32_t bits) { return int32_t(bits); }
inline uint32_t asUnsigned(int32_t value) { return uint32_t(value); }
// The 24-bit fractions converted are exact in a single.
inline float toFloat(uint32_t whole) { return float(int32_t(whole)); }

// A lane type `Name` of `size` bytes with its signed and float views
// (SignedName, FloatName), its width kName, and its helpers: the views, the
// conversion of whole numbers, selections, loads and stores. The widths
// differ only in their size; each has its own byte swap below.
#define FSKIT_NUMFORMAT_LANE_TYPE(Name, size)                                                  \
  typedef uint32_t Name __attribute__((vector_size(size)));                                    \
  typedef int32_t Signed##Name __attribute__((vector_size(size)));                             \
  typedef float Float##Name __attribute__((vector_size(size)));                                \
  inline constexpr size_t k##Name = (size) / 4;                                                \
  inline Name maskOf(Signed##Name condition) { return Name(condition); }                        \
  /* a blend instruction where the masks would take three operations */                        \
  inline Name pick(Signed##Name condition, Name a, Name b) { return condition ? a : b; }        \
  inline Float##Name asFloat(Name bits) { return Float##Name(bits); }                           \
  inline Name bitsOf(Float##Name value) { return Name(value); }                                 \
  inline Signed##Name asSigned(Name bits) { return Signed##Name(bits); }                        \
  inline Name asUnsigned(Signed##Name value) { return Name(value); }                            \
  inline Float##Name toFloat(Name whole) {                                                      \
    return __builtin_convertvector(Signed##Name(whole), Float##Name);                           \
  }                                                                                             \
  inline void load(Name &words, const unsigned char *bytes) {                                   \
    std::memcpy(&words, bytes, sizeof words);                                                   \
  }                                                                                             \
  inline void store(unsigned char *to, Name words) { std::memcpy(to, &words, sizeof words); }

#if FSKIT_NUMFORMAT_LANES
FSKIT_NUMFORMAT_LANE_TYPE(Lanes, 16)
// SSE2 has no byte shuffle: shifts and masks.
inline Lanes byteSwap(Lanes w) {
  return (w >> 24) | ((w >> 8) & 0xFF00u) | ((w << 8) & 0xFF0000u) | (w << 24);
}
#endif
// Eight lanes, in the one file built for AVX2 (numformat/arrays_avx2.cpp),
// which the arrays call only on processors that have it.
#if defined(__AVX2__) && defined(__GNUC__)
FSKIT_NUMFORMAT_LANE_TYPE(WideLanes, 32)
// One byte shuffle (vpshufb) where the shifts take seven operations.
inline WideLanes byteSwap(WideLanes w) {
  using Bytes = uint8_t __attribute__((vector_size(32)));
  Bytes b = std::bit_cast<Bytes>(w);
  return std::bit_cast<WideLanes>(__builtin_shufflevector(b, b, 3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9,
                                                          8, 15, 14, 13, 12, 19, 18, 17, 16, 23,
                                                          22, 21, 20, 27, 26, 25, 24, 31, 30, 29, 28));
}
#endif
#undef FSKIT_NUMFORMAT_LANE_TYPE

// Selections without branches: a mask of all ones picks `a`, of zeros `b`.
template <typename T, typename Condition>
inline T pick(Condition condition, T a, T b) {
  T mask = T(maskOf(condition));
  return (a & mask) | (b & ~mask);
}

}  // namespace fskit::numformat::lanes
