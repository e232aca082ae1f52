// SPDX-License-Identifier: MIT
// Data General Nova floating point: sign, a power of sixteen with excess 64
// and a fraction below 1, most significant byte first. The fraction is an
// integer of 24 (56) bits converted to double and scaled by a power of two
// built directly from its bits; every Nova scale lies well inside double's
// normal range, so the scaling is exact and only the conversion rounds.
#include <fskit/numformat.h>

#include "numformat/words.h"

using namespace fskit::numformat;

namespace {

// 2^(4 * (exponent - 64) - fractionBits) as a double.
inline double novaScale(uint32_t exponent, int fractionBits) {
  return std::bit_cast<double>(uint64_t(4 * int(exponent) - 256 - fractionBits + 1023) << 52);
}

}  // namespace

extern "C" {

FSKIT_API void decodeNovaFloat(void *source, void *destination) {
  if (source == nullptr) return;
  uint32_t nova = loadBig<uint32_t>(source);
  double magnitude = double(nova & 0xFFFFFF) * novaScale(nova >> 24 & 0x7F, 24);
  float value = float(magnitude);  // nearest single; infinity beyond the range
  // The sign goes in as a bit: a branch on it would be a coin toss in real data.
  storeHost(target(source, destination), std::bit_cast<uint32_t>(value) | (nova & 0x80000000u));
}

FSKIT_API void decodeNovaDouble(void *source, void *destination) {
  if (source == nullptr) return;
  uint64_t nova = loadBig<uint64_t>(source);
  // The 56-bit fraction rounds to nearest, ties to even, on conversion.
  double fraction = double(int64_t(nova & 0x00FFFFFFFFFFFFFFu));
  double value = fraction * novaScale(uint32_t(nova >> 56) & 0x7F, 56);
  storeHost(target(source, destination), std::bit_cast<uint64_t>(value) | (nova & uint64_t(1) << 63));
}

}  // extern "C"
