// SPDX-License-Identifier: MIT
// Bit helpers and the three exported bit tables.
#include <fskit/util.h>

namespace {

constexpr uint32_t mask(unsigned i) { return uint32_t{1} << i; }

constexpr uint8_t onesIn(unsigned byte) {
  uint8_t count = 0;
  for (; byte != 0; byte >>= 1) count = uint8_t(count + (byte & 1));
  return count;
}

constexpr uint8_t highestBit(unsigned byte) {
  uint8_t position = 0;
  for (; byte != 0; byte >>= 1) ++position;
  return position;
}

}  // namespace

// The tables are exported as plain C arrays, so they are spelt out entry by
// entry; each entry is a constant expression, so nothing runs at load time.
#define FSKIT_BITS_4(f, i) f(i), f(i + 1), f(i + 2), f(i + 3)
#define FSKIT_BITS_16(f, i) \
  FSKIT_BITS_4(f, i), FSKIT_BITS_4(f, i + 4), FSKIT_BITS_4(f, i + 8), FSKIT_BITS_4(f, i + 12)
#define FSKIT_BITS_64(f, i) \
  FSKIT_BITS_16(f, i), FSKIT_BITS_16(f, i + 16), FSKIT_BITS_16(f, i + 32), FSKIT_BITS_16(f, i + 48)
#define FSKIT_BITS_256(f) \
  FSKIT_BITS_64(f, 0), FSKIT_BITS_64(f, 64), FSKIT_BITS_64(f, 128), FSKIT_BITS_64(f, 192)

extern "C" {

constinit const uint32_t FsBitMasks[32] = {FSKIT_BITS_16(mask, 0), FSKIT_BITS_16(mask, 16)};
constinit const uint8_t FsBitCounts[256] = {FSKIT_BITS_256(onesIn)};
constinit const uint8_t FsBitHighs[256] = {FSKIT_BITS_256(highestBit)};

FSKIT_API char *itob(uint32_t value, int32_t nbits, char *buf) {
  if (buf == nullptr) return nullptr;
  if (nbits <= 0) {
    buf[0] = '\0';
    return buf;
  }
  // Filled from the right, bit 0 first, so the groups count from bit 0.
  char *end = buf + nbits + (nbits - 1) / 8;
  *end = '\0';
  for (int32_t bit = 0; bit < nbits; ++bit) {
    if (bit > 0 && bit % 8 == 0) *--end = ' ';
    *--end = bit < 32 && (value >> bit & 1) ? '1' : '0';
  }
  return buf;
}

FSKIT_API uint32_t fsGetBits(uint32_t value, uint32_t pos, uint32_t n) {
  if (n == 0) return 0;
  // The lowest bit of the field; below bit 0 the word reads as zero bits.
  int64_t low = int64_t(pos) - int64_t(n) + 1;
  uint64_t field = 0;
  if (low >= 0 && low < 32) field = uint64_t(value) >> low;
  else if (low < 0 && low > -64) field = uint64_t(value) << -low;
  uint64_t width = n < 64 ? (uint64_t{1} << n) - 1 : ~uint64_t{0};
  return uint32_t(field & width);
}

FSKIT_API int32_t fsBitCount(uint32_t value) {
  return FsBitCounts[value & 0xff] + FsBitCounts[value >> 8 & 0xff] +
         FsBitCounts[value >> 16 & 0xff] + FsBitCounts[value >> 24];
}

}  // extern "C"
