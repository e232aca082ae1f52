// SPDX-License-Identifier: MIT
// The array converters: the kernels of numformat/kernels.h in loops. The
// 4-byte formats run four lanes at a time, then one at a time for the rest.
#include "numformat/arrays_internal.h"

#include <algorithm>
#include <cstring>

#include "numformat/kernels.h"
#include "numformat/words.h"
#if FSKIT_NUMFORMAT_AVX2
#include "numformat/arrays_avx2.h"
#endif

namespace fskit::numformat {
namespace {

using namespace kernels;

enum class Order { kHost, kLittle, kBig };

template <typename T, Order order>
inline T load(const unsigned char *p) {
  if constexpr (order == Order::kLittle) return loadLittle<T>(p);
  else if constexpr (order == Order::kBig) return loadBig<T>(p);
  else return loadHost<T>(p);
}

template <typename T, Order order>
inline void store(unsigned char *p, T value) {
  if constexpr (order == Order::kLittle) storeLittle(p, value);
  else storeHost(p, value);
}

// The eight-lane loop of a kernel where the processor has AVX2: the values
// it did (none without AVX2, or in a build without that loop).
using WideLoop = size_t (*)(const unsigned char *, unsigned char *, size_t);
#if FSKIT_NUMFORMAT_AVX2
size_t wide(WideLoop loop, const unsigned char *from, unsigned char *to, size_t count) {
  static const bool haveAvx2 = avx2::available();  // asked once
  return haveAvx2 ? loop(from, to, count) : 0;
}
#define FSKIT_WIDE(name) avx2::name
#else
size_t wide(WideLoop, const unsigned char *, unsigned char *, size_t) { return 0; }
#define FSKIT_WIDE(name) nullptr
#endif

// A 4-byte kernel (a generic lambda, for one value and for lanes) over the
// array, after what `wideLoop` did. Lanes exist on little-endian hosts only,
// so there "little" is the host's order.
template <Order in, Order out, typename Kernel>
inline void run32(const unsigned char *__restrict from, unsigned char *__restrict to, size_t count,
                  Kernel kernel, WideLoop wideLoop = nullptr) {
  size_t i = wideLoop != nullptr ? wide(wideLoop, from, to, count) : 0;
#if FSKIT_NUMFORMAT_LANES
  for (; i + lanes::kLanes <= count; i += lanes::kLanes) {
    lanes::Lanes words;
    lanes::load(words, from + 4 * i);
    if constexpr (in == Order::kBig) words = lanes::byteSwap(words);
    lanes::store(to + 4 * i, kernel(words));
  }
#endif
  for (; i < count; ++i) store<uint32_t, out>(to + 4 * i, kernel(load<uint32_t, in>(from + 4 * i)));
}

// A kernel over the array one value at a time: each `In` loaded in order
// `in`, its result stored in order `out`.
template <typename In, Order in, Order out, auto kernel>
inline void runEach(const unsigned char *__restrict from, unsigned char *__restrict to,
                    size_t count) {
  using Out = decltype(kernel(In{}));
  for (size_t i = 0; i < count; ++i)
    store<Out, out>(to + sizeof(Out) * i, kernel(load<In, in>(from + sizeof(In) * i)));
}

// One record of each kind at a time: `step` reads `size` bytes and writes
// `outSize`.
template <size_t size, size_t outSize, typename Step>
inline void runRecords(const unsigned char *__restrict from, unsigned char *__restrict to,
                       size_t count, Step step) {
  for (size_t i = 0; i < count; ++i) step(from + size * i, to + outSize * i);
}

unsigned char *bytesOut(void *p) { return static_cast<unsigned char *>(p); }
const unsigned char *bytesIn(const void *p) { return static_cast<const unsigned char *>(p); }

void decodeVaxF(const unsigned char *in, void *out, size_t n) {
  run32<Order::kLittle, Order::kHost>(in, bytesOut(out), n, [](auto w) { return vaxFloatToIeee(w); },
                                      FSKIT_WIDE(decodeVaxFloat));
}
void encodeVaxF(const void *in, unsigned char *out, size_t n) {
  run32<Order::kHost, Order::kLittle>(bytesIn(in), out, n, [](auto w) { return ieeeToVaxFloat(w); },
                                      FSKIT_WIDE(encodeVaxFloat));
}
void decodeNovaF(const unsigned char *in, void *out, size_t n) {
  run32<Order::kBig, Order::kHost>(in, bytesOut(out), n, [](auto w) { return novaFloatToIeee(w); },
                                   FSKIT_WIDE(decodeNovaFloat));
}
void swap32(const unsigned char *in, void *out, size_t n) {
  run32<Order::kBig, Order::kHost>(in, bytesOut(out), n, [](auto w) { return w; });
}
void swap32Out(const void *in, unsigned char *out, size_t n) { swap32(bytesIn(in), out, n); }

uint16_t same16(uint16_t w) { return w; }

void decodeVaxD(const unsigned char *in, void *out, size_t n) {
  runEach<uint64_t, Order::kLittle, Order::kHost, vaxDoubleToIeee>(in, bytesOut(out), n);
}
void encodeVaxD(const void *in, unsigned char *out, size_t n) {
  runEach<uint64_t, Order::kHost, Order::kLittle, ieeeToVaxDouble>(bytesIn(in), out, n);
}
void decodeNovaD(const unsigned char *in, void *out, size_t n) {
  runEach<uint64_t, Order::kBig, Order::kHost, novaDoubleToIeee>(in, bytesOut(out), n);
}
void swap16(const unsigned char *in, void *out, size_t n) {
  runEach<uint16_t, Order::kBig, Order::kHost, same16>(in, bytesOut(out), n);
}
void swap16Out(const void *in, unsigned char *out, size_t n) { swap16(bytesIn(in), out, n); }
// Two big-endian 32-bit halves to host order, the halves keeping their order.
void swapHalves(const unsigned char *in, void *out, size_t n) { swap32(in, out, 2 * n); }
void swapHalvesOut(const void *in, unsigned char *out, size_t n) { swap32(bytesIn(in), out, 2 * n); }
// An empty array may come with null pointers, which memcpy must not see.
void copyBytes(const void *in, void *out, size_t size) {
  if (size != 0) std::memcpy(out, in, size);
}
void copyBytes4(const unsigned char *in, void *out, size_t n) { copyBytes(in, out, 4 * n); }
void copyBytes4Out(const void *in, unsigned char *out, size_t n) { copyBytes(in, out, 4 * n); }
void copyBytes8(const unsigned char *in, void *out, size_t n) { copyBytes(in, out, 8 * n); }
void copyBytes8Out(const void *in, unsigned char *out, size_t n) { copyBytes(in, out, 8 * n); }

void decodeIncos(const unsigned char *in, void *out, size_t n) {
  runEach<uint16_t, Order::kHost, Order::kHost, incosMass>(in, bytesOut(out), n);
}
void decodeQuorIntensity(const unsigned char *in, void *out, size_t n) {
  runEach<uint16_t, Order::kHost, Order::kHost, quorIntensity>(in, bytesOut(out), n);
}
void encodeQuorIntensity(const void *in, unsigned char *out, size_t n) {
  runEach<float, Order::kHost, Order::kHost, quorIntensityWord>(bytesIn(in), out, n);
}
void decodeQuorRecord(const unsigned char *in, void *out, size_t n) {
  runRecords<6, sizeof(QuorRecord)>(in, bytesOut(out), n, [](const unsigned char *f, unsigned char *t) {
    uint32_t word = loadHost<uint32_t>(f + 2);
    QuorRecord record{quorMass(word), quorIntensity(loadHost<uint16_t>(f)),
                      uint8_t(word >> kMassFlagsShift)};
    std::memcpy(t, &record, sizeof record);
  });
}
void encodeQuorRecord(const void *in, unsigned char *out, size_t n) {
  runRecords<sizeof(QuorRecord), 6>(bytesIn(in), out, n, [](const unsigned char *f, unsigned char *t) {
    QuorRecord record;
    std::memcpy(&record, f, sizeof record);
    storeHost(t + 2, quorMassWord(record.mass) | uint32_t(record.flags & 3) << kMassFlagsShift);
    storeHost(t, quorIntensityWord(record.intensity));
  });
}

constexpr ArrayFormat kFormats[] = {
    {"vaxf", 4, HostType::kFloat32, decodeVaxF, encodeVaxF},
    {"vaxd", 8, HostType::kFloat64, decodeVaxD, encodeVaxD},
    {"hpshort", 2, HostType::kUint16, swap16, swap16Out},
    {"hplong", 4, HostType::kUint32, swap32, swap32Out},
    {"hpdouble", 8, HostType::kFloat64, swapHalves, swapHalvesOut},
    {"novaf", 4, HostType::kFloat32, decodeNovaF, nullptr},
    {"novad", 8, HostType::kFloat64, decodeNovaD, nullptr},
    {"incos", 2, HostType::kFloat32, decodeIncos, nullptr},
    {"quorinty", 2, HostType::kFloat32, decodeQuorIntensity, encodeQuorIntensity},
    {"quorrec", 6, HostType::kQuorRecord, decodeQuorRecord, encodeQuorRecord},
    {"novaushort", 2, HostType::kUint16, swap16, nullptr},
    {"novaulong", 4, HostType::kUint32, swap32, nullptr},
    {"ieeef", 4, HostType::kFloat32, copyBytes4, copyBytes4Out},
    {"ieeed", 8, HostType::kFloat64, copyBytes8, copyBytes8Out},
};

}  // namespace

std::span<const ArrayFormat> arrayFormats() { return kFormats; }

const ArrayFormat *findArrayFormat(std::string_view name) {
  auto found = std::find_if(std::begin(kFormats), std::end(kFormats),
                            [name](const ArrayFormat &format) { return format.name == name; });
  return found != std::end(kFormats) ? found : nullptr;
}

}  // namespace fskit::numformat
