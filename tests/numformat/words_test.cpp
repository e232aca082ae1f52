// Nova floating point, the INCOS mass word and the Quor words: the published
// examples, and every word (or many generated ones) against the definitions.
#include <fskit/numformat.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <random>

#include "tests/numformat/hex.h"

using fskit::test::hexBytes;

TEST(InstrumentWords, ExamplesWithDestinationAndInPlace) {
  struct Case {
    void (*convert)(void *, void *);
    const char *bytes;
    double value;
    size_t resultSize;  // 4: a float, 8: a double
    bool inPlace;
  };
  const Case cases[] = {
      {decodeNovaFloat, "41 10 00 00", 1.0, 4, true},
      {decodeNovaFloat, "C1 28 00 00", -2.5, 4, true},
      {decodeNovaFloat, "42 64 00 00", 100.0, 4, true},
      {decodeNovaFloat, "C5 00 00 00", -0.0, 4, true},
      {decodeNovaFloat, "7F FF FF FF", INFINITY, 4, true},
      {decodeNovaDouble, "41 10 00 00 00 00 00 00", 1.0, 8, true},
      {decodeNovaDouble, "41 32 43 F6 A8 88 5A 30", 3.141592653589793, 8, true},
      {[](void *s, void *d) { decodeIncosMagMass(s, d); }, "00 01", 1.0, 4, false},
      {[](void *s, void *d) { decodeIncosMagMass(s, d); }, "FF 1F", 31.99609375, 4, false},
      {[](void *s, void *d) { decodeIncosMagMass(s, d); }, "00 20", 32.015625, 4, false},
      {[](void *s, void *d) { decodeIncosMagMass(s, d); }, "00 E0", 2049.0, 4, false},
      {[](void *s, void *d) { decodeIncosMagMass(s, d); }, "FF FF", 4096.75, 4, false},
      {decodeQuorInty, "00 08", 1.0, 4, true},
      {decodeQuorInty, "A0 57", 1000.0, 4, true},
      {decodeQuorInty, "00 00", 0.5, 4, true},
      {decodeQuorInty, "33 15", 3.2998046875, 4, true},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.bytes);
    auto source = hexBytes(c.bytes);
    source.resize(8, 0xEE);  // room for an in-place result
    auto kept = source;
    unsigned char out[8];
    c.convert(source.data(), out);
    float single;
    double value;
    std::memcpy(&single, out, 4);
    std::memcpy(&value, out, 8);
    if (c.resultSize == 4) value = single;
    EXPECT_EQ(value, c.value);
    EXPECT_EQ(std::signbit(value), std::signbit(c.value));
    c.convert(source.data(), nullptr);
    EXPECT_EQ(std::memcmp(source.data(), c.inPlace ? out : kept.data(), c.resultSize), 0);
    EXPECT_EQ(std::memcmp(source.data() + c.resultSize, kept.data() + c.resultSize,
                          8 - c.resultSize), 0);
  }
}

TEST(NovaFloatingPoint, RoundsTheDefinedValueToNearest) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 200000; ++i) {
    uint64_t word = random();
    unsigned char bytes[8];
    for (int b = 0; b < 8; ++b) bytes[b] = uint8_t(word >> (56 - 8 * b));
    int scale = 4 * (int(word >> 56 & 0x7F) - 64);
    // The fraction below 1 is exact in long double (64 significant bits).
    long double single = std::ldexp(static_cast<long double>(word >> 32 & 0xFFFFFF), scale - 24);
    long double twice = std::ldexp(static_cast<long double>(word & 0xFFFFFFFFFFFFFFu), scale - 56);
    float expectedSingle = static_cast<float>(word >> 63 ? -single : single);
    double expectedDouble = static_cast<double>(word >> 63 ? -twice : twice);
    float f;
    double d;
    decodeNovaFloat(bytes, &f);
    decodeNovaDouble(bytes, &d);
    EXPECT_EQ(std::bit_cast<uint32_t>(f), std::bit_cast<uint32_t>(expectedSingle)) << std::hex << word;
    EXPECT_EQ(std::bit_cast<uint64_t>(d), std::bit_cast<uint64_t>(expectedDouble)) << std::hex << word;
  }
}

TEST(SixteenBitWords, EveryIncosAndQuorIntensityWord) {
  for (uint32_t w = 0; w < 65536; ++w) {
    uint16_t word = uint16_t(w);
    uint32_t e = w >> 13, m = w & 0x1FFF;
    float incos;
    decodeIncosMagMass(&word, &incos);
    EXPECT_EQ(incos, e == 0 ? m / 256.0 : (m + 8196) * std::pow(2.0, e - 9.0)) << w;

    float intensity;
    decodeQuorInty(&word, &intensity);
    EXPECT_EQ(intensity, std::ldexp(2048.0 + (w & 0x7FF), int(w >> 11) - 12)) << w;
    uint16_t back = 0;
    encodeQuorInty(&intensity, &back);
    EXPECT_EQ(back, word);
  }
  // Truncation, no sign, saturation at both ends of the range.
  const std::pair<float, uint16_t> encodings[] = {
      {3.3f, 0x1533},   {-5.0f, 0x1A00},   {5.0f, 0x1A00},      {0.0f, 0},
      {0.4999f, 0},     {-1e-40f, 0},      {0x1p31f, 0xFFFF},   {INFINITY, 0xFFFF},
      {NAN, 0xFFFF},    {2146959360.0f, 0xFFFF}, {2146959232.0f, 0xFFFE}};
  for (auto [value, word] : encodings) {
    unsigned char buffer[4];
    std::memcpy(buffer, &value, 4);
    encodeQuorInty(buffer, nullptr);  // in place: the first two bytes only
    EXPECT_EQ(buffer[0] | buffer[1] << 8, word) << value;
    EXPECT_EQ(std::memcmp(buffer + 2, reinterpret_cast<unsigned char *>(&value) + 2, 2), 0);
  }
}

TEST(QuorRecord, ExamplesAndGeneratedMassWordsAtAnyAlignment) {
  struct Case {
    double mass;
    float intensity;
    uint8_t flags;
    const char *record;
    double decodedMass;
    float decodedIntensity;
  };
  const Case cases[] = {
      {1.0, 1.0f, 0, "00 08 00 00 00 02", 1.0, 1.0f},
      {500.25, 1000.0f, 2, "A0 57 00 80 E8 93", 500.25, 1000.0f},
      {500.25, 1000.0f, 6, "A0 57 00 80 E8 93", 500.25, 1000.0f},
      {1234.5678, 250000.0f, 1, "42 97 A3 48 69 56", 1234.5677490234375, 249984.0f},
      {0.0, 0.0f, 3, "00 00 00 00 00 C0", 0.5, 0.5f},
      {-0x1p40, 1.0f, 0, "00 08 E7 FF FF 3F", 0x1p31 - 0x1p7, 1.0f},
  };
  unsigned char buffer[7];
  unsigned char *record = buffer + 1;  // the mass word lands at an odd address
  for (const Case &c : cases) {
    SCOPED_TRACE(c.record);
    encodeQuorMassInty(&c.mass, &c.intensity, &c.flags, record);
    EXPECT_EQ(std::vector(record, record + 6), hexBytes(c.record));
    double mass = 0;
    float intensity = 0;
    uint8_t flags = 9;
    decodeQuorMassInty(record, &mass, &intensity, &flags);
    EXPECT_EQ(mass, c.decodedMass);
    EXPECT_EQ(intensity, c.decodedIntensity);
    EXPECT_EQ(flags, c.flags & 3);
  }

  std::mt19937 random(5);
  for (int i = 0; i < 100000; ++i) {
    uint32_t word = random();
    std::memcpy(record + 2, &word, 4);
    double mass;
    decodeQuorMassInty(record, &mass, nullptr, nullptr);
    uint32_t fraction = (word >> 5 & 0xFFFFF) << 3 | (word & 7);
    EXPECT_EQ(mass, std::ldexp(double((1u << 23) | fraction), int(word >> 25 & 31) - 24));
    float intensity = 1.0f;
    uint8_t flags = uint8_t(word >> 30);
    encodeQuorMassInty(&mass, &intensity, &flags, record);
    uint32_t back;
    std::memcpy(&back, record + 2, 4);
    EXPECT_EQ(back, word & ~0x18u) << std::hex << word;  // bits 3 and 4 are written as zero
  }
  float intensity = 0;
  uint8_t flags = 0;
  decodeQuorMassInty(hexBytes("A0 57 00 80 E8 93").data(), nullptr, &intensity, &flags);
  EXPECT_EQ(intensity, 1000.0f);
  EXPECT_EQ(flags, 2);
  encodeQuorMassInty(nullptr, nullptr, nullptr, record);  // nothing to do, no crash
  decodeQuorMassInty(nullptr, nullptr, nullptr, nullptr);
}
