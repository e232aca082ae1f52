// SPDX-License-Identifier: MIT
// The Quor intensity word, mass word and six-byte record, one value at a
// time; the words are converted by the kernels of numformat/kernels.h.
#include <fskit/numformat.h>

#include "numformat/kernels.h"
#include "numformat/words.h"

using namespace fskit::numformat;
using namespace fskit::numformat::kernels;

extern "C" {

FSKIT_API void decodeQuorInty(void *source, void *destination) {
  if (source == nullptr) return;
  storeHost(target(source, destination), quorIntensity(loadHost<uint16_t>(source)));
}

FSKIT_API void encodeQuorInty(void *source, void *destination) {
  if (source == nullptr) return;
  storeHost(target(source, destination), quorIntensityWord(loadHost<float>(source)));
}

FSKIT_API void decodeQuorMassInty(const void *record, double *mass, float *intensity,
                                  uint8_t *flags) {
  if (record == nullptr) return;
  // Both words are read first, in case an output overlaps the record.
  uint16_t intensityBits = loadHost<uint16_t>(record);
  uint32_t word = loadHost<uint32_t>(bytes(record) + 2);
  if (mass != nullptr) storeHost(mass, quorMass(word));
  if (intensity != nullptr) storeHost(intensity, quorIntensity(intensityBits));
  if (flags != nullptr) *flags = uint8_t(word >> kMassFlagsShift);
}

FSKIT_API void encodeQuorMassInty(const double *mass, const float *intensity,
                                  const uint8_t *flags, void *record) {
  if (mass == nullptr || intensity == nullptr || record == nullptr) return;
  uint32_t flagBits = flags != nullptr ? uint32_t(*flags & 3) << kMassFlagsShift : 0;
  storeHost(bytes(record) + 2, quorMassWord(loadHost<double>(mass)) | flagBits);
  // Read only now: the caller's intensity may share bytes with the record.
  storeHost(record, quorIntensityWord(loadHost<float>(intensity)));
}

}  // extern "C"
