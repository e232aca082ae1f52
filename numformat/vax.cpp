// SPDX-License-Identifier: MIT
// DEC VAX F_floating and D_floating, one value at a time. A VAX number holds
// the same fields as an IEEE one (sign, exponent, fraction, from the top bit
// down), but stored as 16-bit little-endian words beginning with the most
// significant word. So each conversion reorders the words and then adjusts
// the exponent: the VAX bias is 128 against IEEE's 127 and its hidden bit
// sits right of the radix point, which makes a VAX F exponent the IEEE one
// plus 2 and a VAX D exponent the IEEE one minus 894. The conversions are
// the kernels of numformat/kernels.h, which the array converters share;
// everything is integer work, so the floating-point environment plays no part.
#include <fskit/numformat.h>

#include "numformat/kernels.h"
#include "numformat/words.h"

using namespace fskit::numformat;

extern "C" {

FSKIT_API void encodeVaxFloat(void *source, void *destination) {
  if (source == nullptr) return;
  storeLittle(target(source, destination), kernels::ieeeToVaxFloat(loadHost<uint32_t>(source)));
}

FSKIT_API void decodeVaxFloat(void *source, void *destination) {
  if (source == nullptr) return;
  storeHost(target(source, destination), kernels::vaxFloatToIeee(loadLittle<uint32_t>(source)));
}

FSKIT_API void encodeVaxDouble(void *source, void *destination) {
  if (source == nullptr) return;
  storeLittle(target(source, destination), kernels::ieeeToVaxDouble(loadHost<uint64_t>(source)));
}

FSKIT_API void decodeVaxDouble(void *source, void *destination) {
  if (source == nullptr) return;
  storeHost(target(source, destination), kernels::vaxDoubleToIeee(loadLittle<uint64_t>(source)));
}

}  // extern "C"
