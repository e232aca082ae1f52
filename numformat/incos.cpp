// SPDX-License-Identifier: MIT
// The INCOS mass word: three exponent bits over a 13-bit mantissa. Exponent
// 0 counts in steps of 1/256; exponents 1 to 7 add 8196 (not 8192, so the
// second range begins at 32.015625, leaving a gap after 31.99609375) and
// double the step each time. Every value is exact in a single.
#include <fskit/numformat.h>

#include "numformat/words.h"

using namespace fskit::numformat;

namespace {
// Exponent 0 and exponent 1 share the step 2^-8.
constexpr float kIncosStep[8] = {0x1p-8f, 0x1p-8f, 0x1p-7f, 0x1p-6f,
                                 0x1p-5f, 0x1p-4f, 0x1p-3f, 0x1p-2f};
}  // namespace

extern "C" {

FSKIT_API void decodeIncosMagMass(const void *source, void *destination) {
  if (source == nullptr || destination == nullptr) return;
  uint32_t word = loadHost<uint16_t>(source);
  uint32_t exponent = word >> 13, mantissa = word & 0x1FFF;
  uint32_t steps = exponent == 0 ? mantissa : mantissa + 8196;
  storeHost(destination, float(int32_t(steps)) * kIncosStep[exponent]);
}

}  // extern "C"
