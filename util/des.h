// SPDX-License-Identifier: MIT
// The DES block cipher and key schedule behind desEncrypt()/desDecrypt().
//
// A 64-bit block is two 32-bit words. In DES's own numbering of the block's
// bits (1 to 64, bit 1 first), bits 1 to 32 are bits 0 to 31 of word 1 and
// bits 33 to 64 are bits 0 to 31 of word 0; every permutation works in that
// numbering. The key has the same layout.
#pragma once

#include <cstdint>


namespace fskit::util {

// The subkeys of one key, made for each call that needs them.
struct DesSchedule {
  uint64_t subkeys[16] = {};  // 48 bits each
  uint32_t c = 0, d = 0;      // the 28-bit key registers
};

}  // namespace fskit::util

namespace fskit::util::des {

struct Block {
  uint32_t word0 = 0;
  uint32_t word1 = 0;
  friend bool operator==(const Block &, const Block &) = default;
};

// How far the key registers turn before each subkey. The library's texts use
// its own schedule; the standard one exists so that the tests can check the
// cipher against published DES vectors.
enum class Rotations { library, standard };

void makeSchedule(Block key, Rotations rotations, DesSchedule &schedule);
Block encipher(Block block, const DesSchedule &schedule);
Block decipher(Block block, const DesSchedule &schedule);

}  // namespace fskit::util::des
