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
constexpr uint64_t reverseWords(uint64_t w) {
  return uint64_t(swapWords(uint32_t(w))) << 32 | swapWords(uint32_t(w >> 32));
}

}  // namespace

extern "C" {

FSKIT_API void encodeVaxFloat(void *source, void *destination) {
  if (source == nullptr) return;
  uint32_t ieee = loadHost<uint32_t>(source);
  uint32_t exponent = ieee >> 23 & 0xFF;
  uint32_t fraction = ieee & 0x7FFFFF;
  uint32_t magnitude;
  if (exponent - 1 < 253) [[likely]]
    magnitude = (ieee & ~kSign32) + (2u << 23);
  else if (exponent != 0)
    magnitude = kVaxLargest32;  // 2^127 and more, infinities, NaNs
  else if (fraction >= 1u << 22)
    magnitude = (1u << 23) + (fraction << 1);  // denormals from 2^-127: exponent 2
  else if (fraction >= 1u << 21)
    magnitude = fraction << 2;  // from 2^-128: exponent 1, the hidden bit moves up
  else
    magnitude = 0;  // below the smallest VAX number
  storeLittle(target(source, destination), swapWords((ieee & kSign32) | magnitude));
}

FSKIT_API void decodeVaxFloat(void *source, void *destination) {
  if (source == nullptr) return;
  uint32_t vax = swapWords(loadLittle<uint32_t>(source));
  uint32_t magnitude = vax & ~kSign32;
  uint32_t exponent = magnitude >> 23;
  uint32_t ieee;
  if (exponent > 2) [[likely]]
    ieee = magnitude == kVaxLargest32 ? kIeeeInfinity32 : magnitude - (2u << 23);
  else if (exponent == 0)
    ieee = 0;
  else  // below the smallest normal single: a denormal, low bits truncated
    ieee = ((magnitude & 0x7FFFFF) | 1u << 23) >> (3 - exponent);
  storeHost(target(source, destination), (vax & kSign32) | ieee);
}

FSKIT_API void encodeVaxDouble(void *source, void *destination) {
  if (source == nullptr) return;
  uint64_t ieee = loadHost<uint64_t>(source);
  uint64_t exponent = ieee >> 52 & 0x7FF;
  uint64_t magnitude;
  if (exponent - 895 < 255) [[likely]]
    magnitude = ((ieee & ~kSign64) - kDoubleExponentShift) << 3;
  else if (exponent >= 1150)
    magnitude = kVaxLargest64;  // 2^127 and more, infinities, NaNs
  else
    magnitude = 0;  // below 2^-128, denormals and zero
  storeLittle(target(source, destination), reverseWords((ieee & kSign64) | magnitude));
}

FSKIT_API void decodeVaxDouble(void *source, void *destination) {
  if (source == nullptr) return;
  uint64_t vax = reverseWords(loadLittle<uint64_t>(source));
  uint64_t magnitude = vax & ~kSign64;
  uint64_t ieee;
  if (magnitude - 1 < kVaxLargest64 - 1) [[likely]]  // neither zero nor the largest
    ieee = (magnitude >> 3) + kDoubleExponentShift;  // the 3 lowest fraction bits go
  else
    ieee = magnitude == 0 ? 0 : kIeeeInfinity64;
  storeHost(target(source, destination), (vax & kSign64) | ieee);
}

}  // extern "C"
