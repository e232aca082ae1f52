// SPDX-License-Identifier: MIT
// IEEE copies and the big-endian HP and Nova words. Every source byte is read
// before the first one is written, so each works in place.
#include <cstring>

#include <fskit/numformat.h>

#include "numformat/words.h"

using namespace fskit::numformat;

namespace {
// Two big-endian 32-bit halves to host order, the halves keeping their order.
inline void halvesToHost(const void *source, void *out) {
  uint32_t first = loadBig<uint32_t>(source), second = loadBig<uint32_t>(bytes(source) + 4);
  storeHost(out, first);
  storeHost(bytes(out) + 4, second);
}
}  // namespace

extern "C" {

FSKIT_API void decodeIeeeFloat(const void *source, void *destination) {
  if (source != nullptr && destination != nullptr) std::memmove(destination, source, 4);
}
FSKIT_API void encodeIeeeFloat(const void *, void *) __attribute__((alias("decodeIeeeFloat")));

FSKIT_API void decodeIeeeDouble(const void *source, void *destination) {
  if (source != nullptr && destination != nullptr) std::memmove(destination, source, 8);
}
FSKIT_API void encodeIeeeDouble(const void *, void *) __attribute__((alias("decodeIeeeDouble")));

FSKIT_API void decodeHpShort(void *source, void *destination) {
  if (source == nullptr) return;
  storeHost(target(source, destination), loadBig<uint16_t>(source));
}
FSKIT_API void encodeHpShort(void *, void *) __attribute__((alias("decodeHpShort")));
FSKIT_API void decodeNovaUshort(void *, void *) __attribute__((alias("decodeHpShort")));

FSKIT_API void decodeHpLong(void *source, void *destination) {
  if (source == nullptr) return;
  storeHost(target(source, destination), loadBig<uint32_t>(source));
}
FSKIT_API void encodeHpLong(void *, void *) __attribute__((alias("decodeHpLong")));
FSKIT_API void decodeNovaUlong(void *, void *) __attribute__((alias("decodeHpLong")));

FSKIT_API void encodeHpDouble(void *source, void *destination) {
  if (source != nullptr) halvesToHost(source, target(source, destination));
}

FSKIT_API void decodeHpDouble(const void *source, void *destination) {
  if (source != nullptr && destination != nullptr) halvesToHost(source, destination);
}

FSKIT_API int validFloat(const void *) { return 1; }
FSKIT_API int validDouble(const void *) __attribute__((alias("validFloat")));

}  // extern "C"
