// SPDX-License-Identifier: MIT
// Every number decoder on any bit pattern (the first 8 input bytes, zero
// padded): each gives a number, never NaN, the same in place as into another
// buffer, and encoding the number again and decoding it gives it back.
#include <fskit/numformat.h>

#include <bit>
#include <cmath>

#include "fuzz/support/fuzz_support.h"

namespace {

using Convert = void (*)(void *, void *);

// `convert` of the first `in` bytes of `pattern` into a fresh buffer and in
// place; both give the same first `out` bytes, which are returned as T.
template <typename T>
T converted(Convert convert, const unsigned char (&pattern)[8], size_t out = sizeof(T)) {
  unsigned char apart[8] = {}, inPlace[8];
  std::memcpy(inPlace, pattern, 8);
  convert(const_cast<unsigned char *>(pattern), apart);
  convert(inPlace, nullptr);
  FUZZ_CHECK(std::memcmp(apart, inPlace, out) == 0);
  T value;
  std::memcpy(&value, apart, sizeof value);
  return value;
}

template <typename T>
bool sameBits(T a, T b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

template <typename T>
T decodedAgain(Convert encode, Convert decode, T value) {
  unsigned char bytes[8] = {};
  std::memcpy(bytes, &value, sizeof value);
  encode(bytes, nullptr);
  decode(bytes, nullptr);
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

}  // namespace

FUZZ_TARGET(bytes) {
  unsigned char pattern[8] = {};
  std::memcpy(pattern, bytes.data(), std::min<size_t>(bytes.size(), 8));
  const unsigned char original[8] = {pattern[0], pattern[1], pattern[2], pattern[3],
                                     pattern[4], pattern[5], pattern[6], pattern[7]};

  const float vaxF = converted<float>(decodeVaxFloat, pattern);
  FUZZ_CHECK(!std::isnan(vaxF) && sameBits(decodedAgain(encodeVaxFloat, decodeVaxFloat, vaxF), vaxF));
  // A VAX D word of exponent 0 decodes to a double below the VAX range,
  // which encodes as zero.
  const double vaxD = converted<double>(decodeVaxDouble, pattern);
  FUZZ_CHECK(!std::isnan(vaxD));
  if (vaxD == 0 || std::fabs(vaxD) >= 0x1p-128)
    FUZZ_CHECK(sameBits(decodedAgain(encodeVaxDouble, decodeVaxDouble, vaxD), vaxD));

  FUZZ_CHECK(!std::isnan(converted<float>(decodeNovaFloat, pattern)));
  const double novaD = converted<double>(decodeNovaDouble, pattern);
  FUZZ_CHECK(!std::isnan(novaD) && !std::isinf(novaD));

  float incos = -1;
  decodeIncosMagMass(pattern, &incos);
  FUZZ_CHECK(incos >= 0 && incos <= 4096.75f);

  // The Quor intensity is decoded in place over four bytes; the word comes
  // back whole.
  const float intensity = converted<float>(decodeQuorInty, pattern);
  FUZZ_CHECK(intensity >= 0.5f && intensity <= 2146959360.0f);
  uint16_t word = 0, back = 0;
  std::memcpy(&word, pattern, 2);
  encodeQuorInty(const_cast<float *>(&intensity), &back);
  FUZZ_CHECK(back == word);

  // A six-byte record comes back but for the two mass-word bits that are
  // always written as zero.
  double mass = 0;
  float recordIntensity = 0;
  uint8_t flags = 9;
  decodeQuorMassInty(pattern, &mass, &recordIntensity, &flags);
  FUZZ_CHECK(mass >= 0.5 && mass < 0x1p31 && flags <= 3 && recordIntensity == intensity);
  unsigned char record[6];
  encodeQuorMassInty(&mass, &recordIntensity, &flags, record);
  uint32_t massWord, massBack;
  std::memcpy(&massWord, pattern + 2, 4);
  std::memcpy(&massBack, record + 2, 4);
  FUZZ_CHECK(massBack == (massWord & ~0x18u) && std::memcmp(record, pattern, 2) == 0);

  // The byte orders: each swap undoes itself.
  for (Convert swap : {decodeHpShort, encodeHpShort, decodeNovaUshort, decodeHpLong, encodeHpLong,
                       decodeNovaUlong, encodeHpDouble}) {
    unsigned char twice[8];
    std::memcpy(twice, pattern, 8);
    swap(twice, nullptr);
    swap(twice, nullptr);
    FUZZ_CHECK(std::memcmp(twice, pattern, 8) == 0);
  }
  FUZZ_CHECK(std::memcmp(pattern, original, 8) == 0);  // no decoder wrote to its source
}
