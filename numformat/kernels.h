// SPDX-License-Identifier: MIT
// The conversion of one value of each foreign format, written once for the
// one-value C functions and the array converters. Every kernel takes and
// gives host-order integers (the caller loads and stores the words); the
// 4-byte kernels are templates that run on one value or on four lanes, with
// selections instead of branches so that the array loops vectorise.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "numformat/lanes.h"

namespace fskit::numformat::kernels {

using lanes::asFloat;
using lanes::asSigned;
using lanes::asUnsigned;
using lanes::bitsOf;
using lanes::pick;
using lanes::toFloat;

// One value (not lanes): the kernels return early from their common case,
// where lanes must compute every case and select.
template <typename T>
inline constexpr bool kOneValue = std::is_same_v<T, uint32_t>;

// A VAX number holds the fields of an IEEE one in 16-bit words stored most
// significant first; exchanging the words gives IEEE bit order and back.
template <typename T>
inline T swapWords(T w) { return w << 16 | w >> 16; }

inline constexpr uint32_t kSign32 = 0x80000000u;
// VAX has no infinity: exponent 255 with a fraction of all ones stands for
// anything too large.
inline constexpr uint32_t kVaxLargest32 = 0x7FFFFFFFu;
inline constexpr uint32_t kIeeeInfinity32 = 0x7F800000u;

// VAX F (the 32-bit word as stored, read little-endian) to IEEE single bits.
// The VAX exponent is the IEEE one plus 2. Exponent 0 gives zero (whatever
// the fraction and sign bits hold, the sign kept), exponents 1 and 2 give
// denormals (the one or two lowest fraction bits dropped), the largest VAX
// magnitude infinity. The common case is told by one comparison on the bits
// shifted clear of the sign (`twice`), whose exponent field then starts at
// bit 24; there the sign rides through the subtraction untouched.
template <typename T>
inline T vaxFloatToIeee(T stored) {
  T vax = swapWords(stored);
  T twice = vax << 1;
  T common = vax - (2u << 23);  // exponent 3 and above, short of the largest
  auto isCommon = twice - (3u << 24) < (kVaxLargest32 << 1) - (3u << 24);
  if constexpr (kOneValue<T>)
    if (isCommon) [[likely]] return common;
  T magnitude = vax & ~kSign32;
  T exponent = magnitude >> 23;
  T significand = (magnitude & 0x7FFFFFu) | 1u << 23;
  T denormal = pick(exponent == 1u, significand >> 2, significand >> 1);
  T rare = pick(exponent > 2u, T{} + kIeeeInfinity32, pick(exponent == 0u, T{}, denormal));
  return pick(isCommon, common, (vax & kSign32) | rare);
}

// IEEE single bits to VAX F (the word to store little-endian). Exponents
// 254 and 255 (2^127 and more, infinities, NaNs) give the largest VAX
// magnitude; below 2^-128 gives zero; denormals from 2^-128 up keep every
// bit. The sign is always kept.
template <typename T>
inline T ieeeToVaxFloat(T ieee) {
  T twice = ieee << 1;
  T common = ieee + (2u << 23);  // exponent 1 to 253: cannot carry into the sign
  auto isCommon = twice - (1u << 24) < (253u << 24);
  if constexpr (kOneValue<T>)
    if (isCommon) [[likely]] return swapWords(common);
  T exponent = ieee >> 23 & 0xFFu;
  T fraction = ieee & 0x7FFFFFu;
  T fromHalf = (1u << 23) + (fraction << 1);  // denormals from 2^-127: exponent 2
  T fromQuarter = fraction << 2;              // from 2^-128: exponent 1
  T denormal = pick(fraction >= (1u << 22), fromHalf, pick(fraction >= (1u << 21), fromQuarter, T{}));
  T rare = pick(exponent != 0u, T{} + kVaxLargest32, denormal);
  return swapWords(pick(isCommon, common, (ieee & kSign32) | rare));
}

// 2^(4 * (exponent - 64) - fractionBits) as a double: every Nova scale lies
// well inside double's normal range, so scaling by it is exact.
inline double novaScale(uint32_t exponent, int fractionBits) {
  return std::bit_cast<double>(uint64_t(4 * int(exponent) - 256 - fractionBits + 1023) << 52);
}

// Nova single (the big-endian word in host order) to IEEE single bits:
// (-1)^s x f / 2^24 x 16^(e-64) rounded once, in the caller's rounding mode,
// to a single (overflow: what the mode gives, infinity when to nearest).
// One value goes through double, where the product is exact and the
// conversion rounds it. Lanes stay in singles: the value is f x 2^k, f
// converts exactly, a normal result only moves the exponent, and a tiny one
// is rounded by adding it, scaled by 2^126, to 1.0: the steps of 2^-23 above
// 1 are then its denormal bits. No lane operation sees a denormal, so none
// is slow. Both routes give the same bits for every pattern (the tests
// compare them over every exponent).
template <typename T>
inline T novaFloatToIeee(T nova) {
  if constexpr (kOneValue<T>) {
    double magnitude = double(nova & 0xFFFFFFu) * novaScale(nova >> 24 & 0x7Fu, 24);
    return std::bit_cast<uint32_t>(float(magnitude)) | (nova & kSign32);
  }
  T fraction = nova & 0xFFFFFFu;
  auto k = 4 * asSigned(nova >> 24 & 0x7Fu) - 280;
  T whole = bitsOf(toFloat(fraction));
  auto exponent = asSigned(whole >> 23) + k;  // biased, of the result if normal
  T normal = whole + asUnsigned(k << 23);
  T large = bitsOf(asFloat((whole & 0x7FFFFFu) | 0x7F000000u) * 2.0f);
  // Scaled by 2^126; below 2^-251 (a biased exponent of 0 or less, read as
  // a signed number) the value stands in as 2^-126: it rounds the same way.
  T shifted = normal + (126u << 23);
  T scaled = pick(asSigned(shifted) > 0x00800000, shifted, T{} + 0x00800000u);
  T tiny = bitsOf(asFloat(scaled) + 1.0f) - 0x3F800000u;
  T magnitude = pick(exponent > 254, large, pick(exponent >= 1, normal, tiny));
  return pick(fraction == 0u, T{}, magnitude) | (nova & kSign32);
}

// 8-byte formats: one value at a time.
inline constexpr uint64_t kSign64 = uint64_t(1) << 63;
inline constexpr uint64_t kVaxLargest64 = ~kSign64;
inline constexpr uint64_t kIeeeInfinity64 = uint64_t(0x7FF) << 52;
// A VAX D exponent is the IEEE one minus 894.
inline constexpr uint64_t kDoubleExponentShift = uint64_t(894) << 52;

// Reversing the lanes of a four-word vector takes one shuffle instruction,
// where the integer version takes six; targets without SSE2 (32-bit x86 by
// default) have no register for such a vector and take the integer version.
inline uint64_t reverseWords(uint64_t w) {
#if FSKIT_NUMFORMAT_LANES
  using Words = uint16_t __attribute__((vector_size(8)));
  Words words = std::bit_cast<Words>(w);
  return std::bit_cast<uint64_t>(__builtin_shufflevector(words, words, 3, 2, 1, 0));
#else
  w = w >> 32 | w << 32;
  return (w >> 16 & 0x0000FFFF0000FFFFu) | (w & 0x0000FFFF0000FFFFu) << 16;
#endif
}

// VAX D (read little-endian) to IEEE double bits: the three lowest fraction
// bits dropped; magnitude 0 gives +-0.0, the largest infinity, exponent 0
// with a non-zero fraction a tiny double.
inline uint64_t vaxDoubleToIeee(uint64_t stored) {
  uint64_t vax = reverseWords(stored);
  uint64_t twice = vax << 1;
  uint64_t ieee;
  if (twice - 2 < (kVaxLargest64 << 1) - 2) [[likely]]  // neither zero nor the largest
    ieee = (twice >> 4) + kDoubleExponentShift;          // the 3 lowest fraction bits go
  else
    ieee = twice == 0 ? 0 : kIeeeInfinity64;
  return (vax & kSign64) | ieee;
}

// IEEE double bits to VAX D (to store little-endian), exact for
// 2^-128 <= |x| < 2^127; beyond, the largest magnitude; below, zero.
inline uint64_t ieeeToVaxDouble(uint64_t ieee) {
  uint64_t exponent = ieee >> 52 & 0x7FF;
  uint64_t vax;
  if (exponent - 895 < 255) [[likely]]  // no borrow from the sign; the shift drops it
    vax = (ieee - kDoubleExponentShift) << 3 | (ieee & kSign64);
  else  // 2^127 and more, infinities, NaNs; or below 2^-128, denormals and zero
    vax = (ieee & kSign64) | (exponent >= 1150 ? kVaxLargest64 : 0);
  return reverseWords(vax);
}


// Nova double (big-endian word in host order) to IEEE double bits: the
// 56-bit fraction rounded to the nearest double, ties to even; never
// overflows.
inline uint64_t novaDoubleToIeee(uint64_t nova) {
  double fraction = double(int64_t(nova & 0x00FFFFFFFFFFFFFFu));
  double value = fraction * novaScale(uint32_t(nova >> 56) & 0x7F, 56);
  return std::bit_cast<uint64_t>(value) | (nova & kSign64);
}

// The INCOS mass word: three exponent bits over a 13-bit mantissa. Exponent
// 0 counts in steps of 1/256; exponents 1 to 7 add 8196 (not 8192, so the
// second range begins at 32.015625) and double the step each time. Every
// value is exact in a single.
inline float incosMass(uint16_t word) {
  constexpr float kStep[8] = {0x1p-8f, 0x1p-8f, 0x1p-7f, 0x1p-6f,
                              0x1p-5f, 0x1p-4f, 0x1p-3f, 0x1p-2f};
  uint32_t exponent = uint32_t(word) >> 13, mantissa = word & 0x1FFFu;
  uint32_t steps = exponent == 0 ? mantissa : mantissa + 8196;
  return float(int32_t(steps)) * kStep[exponent];
}

// The Quor words: an IEEE number with a five-bit exponent, its sign and
// lowest fraction bits cut away. The intensity is 1.m x 2^(x-1) with eleven
// fraction bits, the mass 1.f x 2^(x-1) with twenty-three. Neither has a
// zero, so encoding saturates at the ends of the range.
inline constexpr uint32_t kIntensityBias = uint32_t(126) << 23;  // word 0 is 0.5
inline constexpr uint64_t kMassBias = uint64_t(1022) << 52;
inline constexpr uint32_t kMassFlagsShift = 30;
inline constexpr uint32_t kMassValueBits = 0x3FFFFFE7u;  // bits 3-4 unused

inline float quorIntensity(uint16_t word) {
  return std::bit_cast<float>((uint32_t(word) << 12) + kIntensityBias);
}

inline uint16_t quorIntensityWord(float intensity) {
  uint32_t magnitude = std::bit_cast<uint32_t>(intensity) & 0x7FFFFFFFu;
  if (magnitude < kIntensityBias) return 0;                      // below 0.5
  if (magnitude >= kIntensityBias + (32u << 23)) return 0xFFFF;  // 2^31 up, NaN
  return uint16_t((magnitude - kIntensityBias) >> 12);
}

inline double quorMass(uint32_t word) {
  uint64_t exponentAndTop = uint64_t(word >> 5 & 0x1FFFFFF) << 32;  // 5 + 20 bits
  return std::bit_cast<double>(exponentAndTop + (uint64_t(word & 7) << 29) + kMassBias);
}

inline uint32_t quorMassWord(double mass) {
  uint64_t magnitude = std::bit_cast<uint64_t>(mass) & ~(uint64_t(1) << 63);
  if (magnitude < kMassBias) return 0;                                       // below 0.5
  if (magnitude >= kMassBias + (uint64_t(32) << 52)) return kMassValueBits;  // 2^31 up, NaN
  uint64_t kept = (magnitude - kMassBias) >> 29;  // exponent, then 23 fraction bits
  return uint32_t(kept >> 3) << 5 | uint32_t(kept & 7);
}

}  // namespace fskit::numformat::kernels
