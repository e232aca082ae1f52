// SPDX-License-Identifier: MIT
#include "call_floor.h"

#include <cstdint>
#include <cstring>

namespace {
template <typename T, T (*swap)(T)>
void swapOne(void *source, void *destination) {
  T value;
  std::memcpy(&value, source, sizeof value);
  value = swap(value);
  std::memcpy(destination, &value, sizeof value);
}
uint16_t swap16(uint16_t v) { return __builtin_bswap16(v); }
uint32_t swap32(uint32_t v) { return __builtin_bswap32(v); }
uint64_t swap64(uint64_t v) { return __builtin_bswap64(v); }
}  // namespace

extern "C" {
void floorSwap16(void *source, void *destination) { swapOne<uint16_t, swap16>(source, destination); }
void floorSwap32(void *source, void *destination) { swapOne<uint32_t, swap32>(source, destination); }
void floorSwap64(void *source, void *destination) { swapOne<uint64_t, swap64>(source, destination); }
}
