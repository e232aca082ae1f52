// SPDX-License-Identifier: MIT
// DEC VAX F_floating and D_floating. A VAX number holds the same fields as an
// IEEE one (sign, exponent, fraction, from the top bit down), but stored as
// 16-bit little-endian words beginning with the most significant word. So
// each conversion reorders the words and then adjusts the exponent: the VAX
// bias is 128 against IEEE's 127 and its hidden bit sits right of the radix
// point, which makes a VAX F exponent the IEEE one plus 2 and a VAX D
// exponent the IEEE one minus 894. Everything here is integer work, so the
// floating-point environment plays no part.
#include <fskit/numformat.h>

#include "numformat/words.h"

namespace {

using namespace fskit::numformat;

constexpr uint32_t kSign32 = 0x80000000u;
constexpr uint64_t kSign64 = uint64_t(1) << 63;
// Exponent 255 and a fraction of all ones: VAX has no infinity, so this
// stands for anything too large.
constexpr uint32_t kVaxLargest32 = 0x7FFFFFFFu;
constexpr uint64_t kVaxLargest64 = ~kSign64;
constexpr uint32_t kIeeeInfinity32 = 0x7F800000u;
constexpr uint64_t kIeeeInfinity64 = uint64_t(0x7FF) << 52;
constexpr uint64_t kDoubleExponentShift = uint64_t(894) << 52;

// Exchanging the 16-bit words turns VAX storage order into IEEE bit order
// and back.
constexpr uint32_t swapWords(uint32_t w) { return w << 16 | w >> 16; }
// Reversing the lanes of a four-word vector takes one shuffle instruction,
// where the integer version takes six.
inline uint64_t reverseWords(uint64_t w) {
  using Words = uint16_t __attribute__((vector_size(8)));
  Words words = std::bit_cast<Words>(w);
  return std::bit_cast<uint64_t>(__builtin_shufflevector(words, words, 3, 2, 1, 0));
}

// The rare cases, apart so that the common path stays short.

// Magnitudes of an IEEE single with exponent 0, 254 or 255.
uint32_t vaxMagnitudeOfRare(uint32_t ieee) {
  uint32_t exponent = ieee >> 23 & 0xFF;
  uint32_t fraction = ieee & 0x7FFFFF;
  if (exponent != 0) return kVaxLargest32;  // 2^127 and more, infinities, NaNs
  if (fraction >= 1u << 22) return (1u << 23) + (fraction << 1);  // denormals from 2^-127: exponent 2
  if (fraction >= 1u << 21) return fraction << 2;  // from 2^-128: exponent 1, the hidden bit moves up
  return 0;  // below the smallest VAX number
}

// Magnitudes of a VAX F number with exponent 0, 1 or 2, or the largest.
uint32_t ieeeMagnitudeOfRare(uint32_t vax) {
  uint32_t magnitude = vax & ~kSign32;
  uint32_t exponent = magnitude >> 23;
  if (exponent > 2) return kIeeeInfinity32;
  if (exponent == 0) return 0;
  // Below the smallest normal single: a denormal, low bits truncated.
  return ((magnitude & 0x7FFFFF) | 1u << 23) >> (3 - exponent);
}

}  // namespace

// The common case is told by one comparison, in most converters on the bits
// shifted clear of the sign (`twice`), whose exponent field then starts at
// bit 24 (bit 53 for doubles). In the singles the sign rides through the
// arithmetic untouched.
extern "C" {

FSKIT_API void encodeVaxFloat(void *source, void *destination) {
  if (source == nullptr) return;
  uint32_t ieee = loadHost<uint32_t>(source);
  uint32_t twice = ieee << 1;
  uint32_t vax;
  if (twice - (1u << 24) < 253u << 24) [[likely]]  // exponent 1 to 253
    vax = ieee + (2u << 23);  // the exponent field cannot carry into the sign
  else
    vax = (ieee & kSign32) | vaxMagnitudeOfRare(ieee);
  storeLittle(target(source, destination), swapWords(vax));
}

FSKIT_API void decodeVaxFloat(void *source, void *destination) {
  if (source == nullptr) return;
  uint32_t vax = swapWords(loadLittle<uint32_t>(source));
  uint32_t twice = vax << 1;
  uint32_t ieee;
  // Exponent 3 and above, short of the largest (whose twice is all ones but bit 0).
  if (twice - (3u << 24) < (kVaxLargest32 << 1) - (3u << 24)) [[likely]]
    ieee = vax - (2u << 23);  // no borrow from the sign
  else
    ieee = (vax & kSign32) | ieeeMagnitudeOfRare(vax);
  storeHost(target(source, destination), ieee);
}

FSKIT_API void encodeVaxDouble(void *source, void *destination) {
  if (source == nullptr) return;
  uint64_t ieee = loadHost<uint64_t>(source);
  uint64_t exponent = ieee >> 52 & 0x7FF;
  uint64_t vax;
  if (exponent - 895 < 255) [[likely]]  // no borrow from the sign; the shift drops it
    vax = (ieee - kDoubleExponentShift) << 3 | (ieee & kSign64);
  else  // 2^127 and more, infinities, NaNs; or below 2^-128, denormals and zero
    vax = (ieee & kSign64) | (exponent >= 1150 ? kVaxLargest64 : 0);
  storeLittle(target(source, destination), reverseWords(vax));
}

FSKIT_API void decodeVaxDouble(void *source, void *destination) {
  if (source == nullptr) return;
  uint64_t vax = reverseWords(loadLittle<uint64_t>(source));
  uint64_t twice = vax << 1;
  uint64_t ieee;
  if (twice - 2 < (kVaxLargest64 << 1) - 2) [[likely]]  // neither zero nor the largest
    ieee = (twice >> 4) + kDoubleExponentShift;  // the 3 lowest fraction bits go
  else
    ieee = twice == 0 ? 0 : kIeeeInfinity64;
  storeHost(target(source, destination), (vax & kSign64) | ieee);
}

}  // extern "C"
