// SPDX-License-Identifier: MIT
// The 4-byte kernels on eight lanes. This file alone is compiled for AVX2;
// it instantiates the kernels for the eight-lane type only, so no code built
// for AVX2 stands in for the code the other files share.
#include "numformat/arrays_avx2.h"

#include "numformat/kernels.h"

namespace fskit::numformat::avx2 {
namespace {

using lanes::WideLanes;

template <bool bigEndian, typename Kernel>
size_t run(const unsigned char *__restrict in, unsigned char *__restrict out, size_t count,
           Kernel kernel) {
  size_t i = 0;
  for (; i + lanes::kWideLanes <= count; i += lanes::kWideLanes) {
    WideLanes words;
    lanes::load(words, in + 4 * i);
    if constexpr (bigEndian) words = lanes::byteSwap(words);
    lanes::store(out + 4 * i, kernel(words));
  }
  return i;
}

}  // namespace

bool available() { return __builtin_cpu_supports("avx2"); }

size_t decodeVaxFloat(const unsigned char *in, unsigned char *out, size_t count) {
  return run<false>(in, out, count, [](WideLanes w) { return kernels::vaxFloatToIeee(w); });
}
size_t encodeVaxFloat(const unsigned char *in, unsigned char *out, size_t count) {
  return run<false>(in, out, count, [](WideLanes w) { return kernels::ieeeToVaxFloat(w); });
}
size_t decodeNovaFloat(const unsigned char *in, unsigned char *out, size_t count) {
  return run<true>(in, out, count, [](WideLanes w) { return kernels::novaFloatToIeee(w); });
}

}  // namespace fskit::numformat::avx2
