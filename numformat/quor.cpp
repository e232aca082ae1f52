// SPDX-License-Identifier: MIT
// The Quor intensity word, mass word and six-byte record. Both words are an
// IEEE number with a five-bit exponent and its sign and lowest fraction bits
// cut away: the intensity is 1.m x 2^(x-1) with eleven fraction bits, the mass
// 1.f x 2^(x-1) with twenty-three. Neither has a zero, so encoding saturates
// at the ends of the range rather than wrapping the exponent.
#include <fskit/numformat.h>

#include "numformat/words.h"

using namespace fskit::numformat;

namespace {

constexpr uint32_t kIntensityBias = uint32_t(126) << 23;  // word 0 is 0.5
constexpr uint64_t kMassBias = uint64_t(1022) << 52;
constexpr uint32_t kMassFlagsShift = 30;
constexpr uint32_t kMassValueBits = 0x3FFFFFE7u;  // exponent and fraction, bits 3-4 unused

inline float intensityOf(uint16_t word) {
  return std::bit_cast<float>((uint32_t(word) << 12) + kIntensityBias);
}

inline uint16_t intensityWord(float intensity) {
  uint32_t magnitude = std::bit_cast<uint32_t>(intensity) & 0x7FFFFFFFu;
  if (magnitude < kIntensityBias) return 0;                   // below 0.5
  if (magnitude >= kIntensityBias + (32u << 23)) return 0xFFFF;  // 2^31 up, NaN
  return uint16_t((magnitude - kIntensityBias) >> 12);
}

inline double massOf(uint32_t word) {
  uint64_t exponentAndTop = uint64_t(word >> 5 & 0x1FFFFFF) << 32;  // 5 + 20 bits
  return std::bit_cast<double>(exponentAndTop + (uint64_t(word & 7) << 29) + kMassBias);
}

inline uint32_t massWord(double mass) {
  uint64_t magnitude = std::bit_cast<uint64_t>(mass) & ~(uint64_t(1) << 63);
  if (magnitude < kMassBias) return 0;                                    // below 0.5
  if (magnitude >= kMassBias + (uint64_t(32) << 52)) return kMassValueBits;  // 2^31 up, NaN
  uint64_t kept = (magnitude - kMassBias) >> 29;  // exponent, then 23 fraction bits
  return uint32_t(kept >> 3) << 5 | uint32_t(kept & 7);
}

}  // namespace

extern "C" {

FSKIT_API void decodeQuorInty(void *source, void *destination) {
  if (source == nullptr) return;
  storeHost(target(source, destination), intensityOf(loadHost<uint16_t>(source)));
}

FSKIT_API void encodeQuorInty(void *source, void *destination) {
  if (source == nullptr) return;
  storeHost(target(source, destination), intensityWord(loadHost<float>(source)));
}

FSKIT_API void decodeQuorMassInty(const void *record, double *mass, float *intensity,
                                  uint8_t *flags) {
  if (record == nullptr) return;
  // Both words are read first, in case an output overlaps the record.
  uint16_t intensityBits = loadHost<uint16_t>(record);
  uint32_t word = loadHost<uint32_t>(bytes(record) + 2);
  if (mass != nullptr) storeHost(mass, massOf(word));
  if (intensity != nullptr) storeHost(intensity, intensityOf(intensityBits));
  if (flags != nullptr) *flags = uint8_t(word >> kMassFlagsShift);
}

FSKIT_API void encodeQuorMassInty(const double *mass, const float *intensity,
                                  const uint8_t *flags, void *record) {
  if (mass == nullptr || intensity == nullptr || record == nullptr) return;
  uint32_t flagBits = flags != nullptr ? uint32_t(*flags & 3) << kMassFlagsShift : 0;
  storeHost(bytes(record) + 2, massWord(loadHost<double>(mass)) | flagBits);
  // Read only now: the caller's intensity may share bytes with the record.
  storeHost(record, intensityWord(loadHost<float>(intensity)));
}

}  // extern "C"
