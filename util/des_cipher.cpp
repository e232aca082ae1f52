// SPDX-License-Identifier: MIT
// DES (FIPS PUB 46): the standard's permutations, expansion and S-boxes.
// Bit k of DES's numbering (1 to 64) is bit k - 1 of a uint64_t here, so the
// tables below are the standard's own, position for position.
#include <array>
#include <cstddef>
#include <iterator>

#include "util/des.h"

namespace fskit::util::des {
namespace {

constexpr uint8_t kInitialPermutation[64] = {
    58, 50, 42, 34, 26, 18, 10, 2, 60, 52, 44, 36, 28, 20, 12, 4,
    62, 54, 46, 38, 30, 22, 14, 6, 64, 56, 48, 40, 32, 24, 16, 8,
    57, 49, 41, 33, 25, 17, 9,  1, 59, 51, 43, 35, 27, 19, 11, 3,
    61, 53, 45, 37, 29, 21, 13, 5, 63, 55, 47, 39, 31, 23, 15, 7};

constexpr uint8_t kExpansion[48] = {
    32, 1,  2,  3,  4,  5,  4,  5,  6,  7,  8,  9,  8,  9,  10, 11,
    12, 13, 12, 13, 14, 15, 16, 17, 16, 17, 18, 19, 20, 21, 20, 21,
    22, 23, 24, 25, 24, 25, 26, 27, 28, 29, 28, 29, 30, 31, 32, 1};

constexpr uint8_t kPermutation[32] = {16, 7, 20, 21, 29, 12, 28, 17, 1,  15, 23,
                                      26, 5, 18, 31, 10, 2,  8,  24, 14, 32, 27,
                                      3,  9, 19, 13, 30, 6,  22, 11, 4,  25};

constexpr uint8_t kPermutedChoice1[56] = {
    57, 49, 41, 33, 25, 17, 9,  1,  58, 50, 42, 34, 26, 18,
    10, 2,  59, 51, 43, 35, 27, 19, 11, 3,  60, 52, 44, 36,
    63, 55, 47, 39, 31, 23, 15, 7,  62, 54, 46, 38, 30, 22,
    14, 6,  61, 53, 45, 37, 29, 21, 13, 5,  28, 20, 12, 4};

constexpr uint8_t kPermutedChoice2[48] = {
    14, 17, 11, 24, 1,  5,  3,  28, 15, 6,  21, 10, 23, 19, 12, 4,
    26, 8,  16, 7,  27, 20, 13, 2,  41, 52, 31, 37, 47, 55, 30, 40,
    51, 45, 33, 48, 44, 49, 39, 56, 34, 53, 46, 42, 50, 36, 29, 32};

// S-box rows as printed in the standard: row (outer bits) then column (inner).
constexpr uint8_t kSBoxes[8][4][16] = {
    {{14, 4, 13, 1, 2, 15, 11, 8, 3, 10, 6, 12, 5, 9, 0, 7},
     {0, 15, 7, 4, 14, 2, 13, 1, 10, 6, 12, 11, 9, 5, 3, 8},
     {4, 1, 14, 8, 13, 6, 2, 11, 15, 12, 9, 7, 3, 10, 5, 0},
     {15, 12, 8, 2, 4, 9, 1, 7, 5, 11, 3, 14, 10, 0, 6, 13}},
    {{15, 1, 8, 14, 6, 11, 3, 4, 9, 7, 2, 13, 12, 0, 5, 10},
     {3, 13, 4, 7, 15, 2, 8, 14, 12, 0, 1, 10, 6, 9, 11, 5},
     {0, 14, 7, 11, 10, 4, 13, 1, 5, 8, 12, 6, 9, 3, 2, 15},
     {13, 8, 10, 1, 3, 15, 4, 2, 11, 6, 7, 12, 0, 5, 14, 9}},
    {{10, 0, 9, 14, 6, 3, 15, 5, 1, 13, 12, 7, 11, 4, 2, 8},
     {13, 7, 0, 9, 3, 4, 6, 10, 2, 8, 5, 14, 12, 11, 15, 1},
     {13, 6, 4, 9, 8, 15, 3, 0, 11, 1, 2, 12, 5, 10, 14, 7},
     {1, 10, 13, 0, 6, 9, 8, 7, 4, 15, 14, 3, 11, 5, 2, 12}},
    {{7, 13, 14, 3, 0, 6, 9, 10, 1, 2, 8, 5, 11, 12, 4, 15},
     {13, 8, 11, 5, 6, 15, 0, 3, 4, 7, 2, 12, 1, 10, 14, 9},
     {10, 6, 9, 0, 12, 11, 7, 13, 15, 1, 3, 14, 5, 2, 8, 4},
     {3, 15, 0, 6, 10, 1, 13, 8, 9, 4, 5, 11, 12, 7, 2, 14}},
    {{2, 12, 4, 1, 7, 10, 11, 6, 8, 5, 3, 15, 13, 0, 14, 9},
     {14, 11, 2, 12, 4, 7, 13, 1, 5, 0, 15, 10, 3, 9, 8, 6},
     {4, 2, 1, 11, 10, 13, 7, 8, 15, 9, 12, 5, 6, 3, 0, 14},
     {11, 8, 12, 7, 1, 14, 2, 13, 6, 15, 0, 9, 10, 4, 5, 3}},
    {{12, 1, 10, 15, 9, 2, 6, 8, 0, 13, 3, 4, 14, 7, 5, 11},
     {10, 15, 4, 2, 7, 12, 9, 5, 6, 1, 13, 14, 0, 11, 3, 8},
     {9, 14, 15, 5, 2, 8, 12, 3, 7, 0, 4, 10, 1, 13, 11, 6},
     {4, 3, 2, 12, 9, 5, 15, 10, 11, 14, 1, 7, 6, 0, 8, 13}},
    {{4, 11, 2, 14, 15, 0, 8, 13, 3, 12, 9, 7, 5, 10, 6, 1},
     {13, 0, 11, 7, 4, 9, 1, 10, 14, 3, 5, 12, 2, 15, 8, 6},
     {1, 4, 11, 13, 12, 3, 7, 14, 10, 15, 6, 8, 0, 5, 9, 2},
     {6, 11, 13, 8, 1, 4, 10, 7, 9, 5, 0, 15, 14, 2, 3, 12}},
    {{13, 2, 8, 4, 6, 15, 11, 1, 10, 9, 3, 14, 5, 0, 12, 7},
     {1, 15, 13, 8, 10, 3, 7, 4, 12, 5, 6, 11, 0, 14, 9, 2},
     {7, 11, 4, 1, 9, 12, 14, 2, 0, 6, 10, 13, 15, 3, 5, 8},
     {2, 1, 14, 7, 4, 10, 8, 13, 15, 12, 9, 0, 3, 5, 6, 11}}};

// Rotations of the key registers before each of the 16 subkeys.
constexpr uint8_t kLibraryRotations[16] = {0, 0, 1, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 1, 0};
constexpr uint8_t kStandardRotations[16] = {1, 1, 2, 2, 2, 2, 2, 2, 1, 2, 2, 2, 2, 2, 2, 1};

// Output bit i is input bit table[i] (both in DES's numbering).
template <typename Table>
constexpr uint64_t permute(uint64_t in, const Table &table) {
  uint64_t out = 0;
  for (std::size_t i = 0; i < std::size(table); ++i) out |= (in >> (table[i] - 1) & 1) << i;
  return out;
}

constexpr std::array<uint8_t, 64> inverse(const uint8_t (&table)[64]) {
  std::array<uint8_t, 64> result{};
  for (uint8_t i = 0; i < 64; ++i) result[table[i] - 1] = uint8_t(i + 1);
  return result;
}
constexpr auto kFinalPermutation = inverse(kInitialPermutation);

// The eight S-boxes indexed directly by their 6 input bits as they sit in the
// word (first bit lowest), giving the 4 output bits the same way round.
constexpr auto kSBoxLookup = [] {
  std::array<std::array<uint8_t, 64>, 8> lookup{};
  for (int box = 0; box < 8; ++box)
    for (unsigned six = 0; six < 64; ++six) {
      auto bit = [six](int k) { return six >> (k - 1) & 1; };  // k = 1 .. 6
      unsigned row = bit(1) << 1 | bit(6);
      unsigned column = bit(2) << 3 | bit(3) << 2 | bit(4) << 1 | bit(5);
      unsigned value = kSBoxes[box][row][column];
      lookup[box][six] = uint8_t((value >> 3 & 1) | (value >> 1 & 2) | (value << 1 & 4) |
                                 (value << 3 & 8));
    }
  return lookup;
}();

uint32_t roundFunction(uint32_t right, uint64_t subkey) {
  uint64_t mixed = permute(right, kExpansion) ^ subkey;
  uint64_t substituted = 0;
  for (int box = 0; box < 8; ++box)
    substituted |= uint64_t{kSBoxLookup[box][mixed >> (6 * box) & 63]} << (4 * box);
  return uint32_t(permute(substituted, kPermutation));
}

uint32_t rotateKeyRegister(uint32_t half) { return (half >> 1 | (half & 1) << 27) & 0xfffffff; }

Block crypt(Block block, const DesSchedule &schedule, bool decrypting) {
  uint64_t in = permute(block.word1 | uint64_t{block.word0} << 32, kInitialPermutation);
  uint32_t left = uint32_t(in), right = uint32_t(in >> 32);
  for (int round = 0; round < 16; ++round) {
    uint64_t subkey = schedule.subkeys[decrypting ? 15 - round : round];
    uint32_t next = left ^ roundFunction(right, subkey);
    left = right;
    right = next;
  }
  uint64_t out = permute(right | uint64_t{left} << 32, kFinalPermutation);
  return {uint32_t(out >> 32), uint32_t(out)};
}

}  // namespace

void makeSchedule(Block key, Rotations rotations, DesSchedule &schedule) {
  const uint8_t *turns = rotations == Rotations::library ? kLibraryRotations : kStandardRotations;
  uint64_t halves = permute(key.word1 | uint64_t{key.word0} << 32, kPermutedChoice1);
  schedule.c = uint32_t(halves & 0xfffffff);
  schedule.d = uint32_t(halves >> 28);
  for (int round = 0; round < 16; ++round) {
    for (int turn = 0; turn < turns[round]; ++turn) {
      schedule.c = rotateKeyRegister(schedule.c);
      schedule.d = rotateKeyRegister(schedule.d);
    }
    schedule.subkeys[round] =
        permute(schedule.c | uint64_t{schedule.d} << 28, kPermutedChoice2);
  }
}

Block encipher(Block block, const DesSchedule &schedule) { return crypt(block, schedule, false); }
Block decipher(Block block, const DesSchedule &schedule) { return crypt(block, schedule, true); }

}  // namespace fskit::util::des
