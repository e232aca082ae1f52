// SPDX-License-Identifier: MIT
// The array converters give what the one-value C functions give, bit for
// bit: every format over random bytes, the 4-byte formats over every
// sign-and-exponent pattern, at every length around the lane widths (the
// loops switch from eight and four lanes to one value at a time), and at odd
// addresses. The whole 2^32 range of the 4-byte formats was compared once,
// outside the suite; this keeps the special patterns and the loop edges.
#include <gtest/gtest.h>

#include <fskit/numformat.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "numformat/arrays_internal.h"

namespace {

using fskit::numformat::ArrayFormat;
using fskit::numformat::findArrayFormat;

using OneValue = void (*)(void *, void *);

// The one-value results of `convert` over values of `inSize` bytes (by
// default the format's foreign size), written as the arrays write them.
std::vector<unsigned char> oneAtATime(const ArrayFormat &format, const std::vector<unsigned char> &in,
                                      size_t outSize, OneValue convert, size_t inSize = 0) {
  if (inSize == 0) inSize = format.size;
  size_t count = in.size() / inSize;
  std::vector<unsigned char> out(count * outSize), value(16);
  for (size_t i = 0; i < count; ++i) {
    std::memcpy(value.data(), in.data() + i * inSize, inSize);
    unsigned char result[16] = {};
    convert(value.data(), result);
    std::memcpy(out.data() + i * outSize, result, outSize);
  }
  return out;
}

std::vector<unsigned char> throughArray(const ArrayFormat &format, const std::vector<unsigned char> &in,
                                        size_t outSize, size_t shift = 0) {
  size_t count = in.size() / format.size;
  // Both buffers start `shift` bytes into a larger one: any alignment works.
  std::vector<unsigned char> from(in.size() + shift), to(count * outSize + shift);
  std::copy(in.begin(), in.end(), from.begin() + std::ptrdiff_t(shift));
  format.decode(from.data() + shift, to.data() + shift, count);
  return std::vector<unsigned char>(to.begin() + std::ptrdiff_t(shift), to.end());
}

std::vector<unsigned char> randomBytes(size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<unsigned char> bytes(size);
  for (unsigned char &byte : bytes) byte = static_cast<unsigned char>(random());
  return bytes;
}

struct Decoder {
  const char *name;
  size_t outSize;
  OneValue convert;
};

// decodeIncosMagMass and decodeHpDouble take a const source.
void incos(void *in, void *out) { decodeIncosMagMass(in, out); }
void hpDouble(void *in, void *out) { decodeHpDouble(in, out); }
void ieeeFloat(void *in, void *out) { decodeIeeeFloat(in, out); }
void ieeeDouble(void *in, void *out) { decodeIeeeDouble(in, out); }

// The Quor record one at a time, out of and into the arrays' packed struct.
void decodeRecord(void *in, void *out) {
  double mass;
  float intensity;
  uint8_t flags;
  decodeQuorMassInty(in, &mass, &intensity, &flags);
  fskit::numformat::QuorRecord record{mass, intensity, flags};
  std::memcpy(out, &record, sizeof record);
}
void encodeRecord(void *in, void *out) {
  fskit::numformat::QuorRecord record;
  std::memcpy(&record, in, sizeof record);
  double mass = record.mass;
  float intensity = record.intensity;
  uint8_t flags = record.flags;
  encodeQuorMassInty(&mass, &intensity, &flags, out);
}

const Decoder kDecoders[] = {
    {"vaxf", 4, decodeVaxFloat},      {"vaxd", 8, decodeVaxDouble},
    {"hpshort", 2, decodeHpShort},    {"hplong", 4, decodeHpLong},
    {"hpdouble", 8, hpDouble},        {"novaf", 4, decodeNovaFloat},
    {"novad", 8, decodeNovaDouble},   {"incos", 4, incos},
    {"quorinty", 4, decodeQuorInty},  {"novaushort", 2, decodeNovaUshort},
    {"novaulong", 4, decodeNovaUlong}, {"ieeef", 4, ieeeFloat},
    {"ieeed", 8, ieeeDouble},         {"quorrec", 13, decodeRecord},
};

TEST(ArrayConverters, DecodeRandomBytesAsTheOneValueFunctions) {
  for (const Decoder &decoder : kDecoders) {
    SCOPED_TRACE(decoder.name);
    const ArrayFormat *format = findArrayFormat(decoder.name);
    ASSERT_NE(format, nullptr);
    for (size_t count : {0, 1, 3, 4, 5, 7, 8, 9, 15, 16, 17, 1000}) {
      auto in = randomBytes(count * format->size, unsigned(count));
      auto expected = oneAtATime(*format, in, decoder.outSize, decoder.convert);
      EXPECT_EQ(throughArray(*format, in, decoder.outSize), expected) << count;
      EXPECT_EQ(throughArray(*format, in, decoder.outSize, 3), expected) << count;
    }
  }
}

// Every value of the top 16 bits (sign, exponent and the high fraction) with
// low halves that reach the edges of each exponent.
std::vector<unsigned char> everyExponent(bool bigEndian, bool vaxOrder) {
  std::vector<unsigned char> bytes;
  for (uint32_t high = 0; high < 0x10000; ++high)
    for (uint32_t low : {0x0000u, 0x0001u, 0x7FFFu, 0x8000u, 0xFFFEu, 0xFFFFu}) {
      uint32_t word = high << 16 | low;
      if (vaxOrder) word = word << 16 | word >> 16;  // the high word stored first
      unsigned char out[4];
      for (int k = 0; k < 4; ++k) out[k] = uint8_t(word >> (bigEndian ? 24 - 8 * k : 8 * k));
      bytes.insert(bytes.end(), out, out + 4);
    }
  return bytes;
}

TEST(ArrayConverters, FourByteFormatsOverEveryExponent) {
  auto vax = everyExponent(false, true), nova = everyExponent(true, false);
  EXPECT_EQ(throughArray(*findArrayFormat("vaxf"), vax, 4),
            oneAtATime(*findArrayFormat("vaxf"), vax, 4, decodeVaxFloat));
  EXPECT_EQ(throughArray(*findArrayFormat("novaf"), nova, 4),
            oneAtATime(*findArrayFormat("novaf"), nova, 4, decodeNovaFloat));
  // Encoding takes IEEE singles: the same patterns as host words.
  auto ieee = everyExponent(false, false);
  std::vector<unsigned char> encoded(ieee.size());
  findArrayFormat("vaxf")->encode(ieee.data(), encoded.data(), ieee.size() / 4);
  EXPECT_EQ(encoded, oneAtATime(*findArrayFormat("vaxf"), ieee, 4, encodeVaxFloat));
}

TEST(ArrayConverters, EncodeAsTheOneValueFunctions) {
  struct Encoder {
    const char *name;
    size_t inSize;
    OneValue convert;
  };
  const Encoder encoders[] = {{"vaxf", 4, encodeVaxFloat},   {"vaxd", 8, encodeVaxDouble},
                              {"hpshort", 2, encodeHpShort}, {"hplong", 4, encodeHpLong},
                              {"hpdouble", 8, encodeHpDouble}, {"quorinty", 4, encodeQuorInty}};
  for (const Encoder &encoder : encoders) {
    SCOPED_TRACE(encoder.name);
    const ArrayFormat &format = *findArrayFormat(encoder.name);
    for (size_t count : {0, 1, 4, 7, 8, 9, 33, 1000}) {
      auto in = randomBytes(count * encoder.inSize, unsigned(count) + 99);
      std::vector<unsigned char> out(count * format.size);
      format.encode(in.data(), out.data(), count);
      EXPECT_EQ(out, oneAtATime(format, in, format.size, encoder.convert, encoder.inSize)) << count;
    }
  }
}

TEST(ArrayConverters, QuorRecordsEncodeAsTheOneValueFunction) {
  // Decoded records, so that every mass and intensity is one a record holds.
  const ArrayFormat &format = *findArrayFormat("quorrec");
  auto decoded = throughArray(format, randomBytes(6 * 500, 7), 13);
  std::vector<unsigned char> encoded(6 * 500);
  format.encode(decoded.data(), encoded.data(), 500);
  EXPECT_EQ(encoded, oneAtATime(format, decoded, 6, encodeRecord, 13));
}

}  // namespace
