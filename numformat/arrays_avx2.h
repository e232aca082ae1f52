// SPDX-License-Identifier: MIT
// The array loops built for AVX2 (arrays_avx2.cpp, compiled with -mavx2 on
// x86-64), eight values at a time. Each converts the longest whole number
// of eight-value steps and returns how many values it did; the caller does
// the rest. Call them only when available() says so.
#pragma once

#include <cstddef>

namespace fskit::numformat::avx2 {

bool available();
size_t decodeVaxFloat(const unsigned char *in, unsigned char *out, size_t count);
size_t encodeVaxFloat(const unsigned char *in, unsigned char *out, size_t count);
size_t decodeNovaFloat(const unsigned char *in, unsigned char *out, size_t count);

}  // namespace fskit::numformat::avx2
