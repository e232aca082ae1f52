// SPDX-License-Identifier: MIT
// The INCOS mass word, one value at a time (kernels::incosMass).
#include <fskit/numformat.h>

#include "numformat/kernels.h"
#include "numformat/words.h"

using namespace fskit::numformat;

extern "C" {

FSKIT_API void decodeIncosMagMass(const void *source, void *destination) {
  if (source == nullptr || destination == nullptr) return;
  storeHost(destination, kernels::incosMass(loadHost<uint16_t>(source)));
}

}  // extern "C"
