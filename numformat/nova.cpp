// SPDX-License-Identifier: MIT
// Data General Nova floating point, one value at a time: sign, a power of
// sixteen with excess 64 and a fraction below 1, most significant byte
// first. The conversions are the kernels of numformat/kernels.h, which the
// array converters share.
#include <fskit/numformat.h>

#include "numformat/kernels.h"
#include "numformat/words.h"

using namespace fskit::numformat;

extern "C" {

FSKIT_API void decodeNovaFloat(void *source, void *destination) {
  if (source == nullptr) return;
  storeHost(target(source, destination), kernels::novaFloatToIeee(loadBig<uint32_t>(source)));
}

FSKIT_API void decodeNovaDouble(void *source, void *destination) {
  if (source == nullptr) return;
  storeHost(target(source, destination), kernels::novaDoubleToIeee(loadBig<uint64_t>(source)));
}

}  // extern "C"
