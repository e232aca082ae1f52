// VAX, HP and IEEE conversions: the published examples under every exported
// name, and VAX values checked against their definition in long double.
#include <fskit/numformat.h>
#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <random>

#include "tests/numformat/hex.h"

using fskit::test::hexBytes;
using Convert = void (*)(void *, void *);

TEST(NumberBytes, ExamplesUnderEveryNameWithDestinationAndInPlace) {
  struct Case {
    Convert convert;
    const char *from, *to;
    bool inPlace;  // a null destination writes over the source
  };
  const Case cases[] = {
      {encodeVaxFloat, "00 00 80 3F", "80 40 00 00", true},
      {encodeVaxFloat, "00 00 20 C0", "20 C1 00 00", true},
      {encodeVaxFloat, "00 00 C8 42", "C8 43 00 00", true},
      {encodeVaxFloat, "D0 0F 49 40", "49 41 D0 0F", true},
      {encodeVaxFloat, "00 00 80 7F", "FF 7F FF FF", true},
      {encodeVaxFloat, "00 00 00 80", "00 80 00 00", true},
      {encodeVaxFloat, "00 00 60 00", "40 01 00 00", true},
      {encodeVaxFloat, "00 00 10 00", "00 00 00 00", true},
      {encodeVaxFloat, "00 00 20 00", "80 00 00 00", true},
      {decodeVaxFloat, "80 00 00 00", "00 00 20 00", true},
      {decodeVaxFloat, "80 40 00 00", "00 00 80 3F", true},
      {decodeVaxFloat, "49 41 D0 0F", "D0 0F 49 40", true},
      {decodeVaxFloat, "FF 7F FF FF", "00 00 80 7F", true},
      {decodeVaxFloat, "40 01 00 00", "00 00 60 00", true},
      {decodeVaxFloat, "00 80 12 34", "00 00 00 80", true},
      {encodeVaxDouble, "00 00 00 00 00 00 F0 3F", "80 40 00 00 00 00 00 00", true},
      {encodeVaxDouble, "00 00 00 00 00 00 04 C0", "20 C1 00 00 00 00 00 00", true},
      {encodeVaxDouble, "18 2D 44 54 FB 21 09 40", "49 41 DA 0F 21 A2 C0 68", true},
      {encodeVaxDouble, "00 00 00 00 00 00 F0 FF", "FF FF FF FF FF FF FF FF", true},
      {encodeVaxDouble, "00 00 00 00 00 00 00 80", "00 80 00 00 00 00 00 00", true},
      {decodeVaxDouble, "49 41 DA 0F 21 A2 C0 68", "18 2D 44 54 FB 21 09 40", true},
      {decodeVaxDouble, "FF 7F FF FF FF FF FF FF", "00 00 00 00 00 00 F0 7F", true},
      {decodeVaxDouble, "00 80 00 00 00 00 00 00", "00 00 00 00 00 00 00 80", true},
      {decodeVaxDouble, "00 00 00 00 00 00 08 00", "01 00 00 00 00 00 E0 37", true},
      {decodeHpShort, "12 34", "34 12", true},
      {encodeHpShort, "12 34", "34 12", true},
      {decodeNovaUshort, "12 34", "34 12", true},
      {decodeHpLong, "12 34 56 78", "78 56 34 12", true},
      {encodeHpLong, "12 34 56 78", "78 56 34 12", true},
      {decodeNovaUlong, "12 34 56 78", "78 56 34 12", true},
      {encodeHpDouble, "01 02 03 04 05 06 07 08", "04 03 02 01 08 07 06 05", true},
      {[](void *s, void *d) { decodeHpDouble(s, d); }, "01 02 03 04 05 06 07 08",
       "04 03 02 01 08 07 06 05", false},
      {[](void *s, void *d) { decodeIeeeFloat(s, d); }, "01 02 03 04", "01 02 03 04", false},
      {[](void *s, void *d) { encodeIeeeFloat(s, d); }, "01 02 03 04", "01 02 03 04", false},
      {[](void *s, void *d) { decodeIeeeDouble(s, d); }, "01 02 03 04 05 06 07 08",
       "01 02 03 04 05 06 07 08", false},
      {[](void *s, void *d) { encodeIeeeDouble(s, d); }, "01 02 03 04 05 06 07 08",
       "01 02 03 04 05 06 07 08", false},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.from);
    auto source = hexBytes(c.from), expected = hexBytes(c.to);
    std::vector<unsigned char> out(expected.size() + 1, 0xEE), kept = source;
    c.convert(source.data(), out.data());
    EXPECT_EQ(source, kept);
    EXPECT_EQ(std::vector(out.begin(), out.end() - 1), expected);
    EXPECT_EQ(out.back(), 0xEE);
    c.convert(source.data(), nullptr);
    EXPECT_EQ(source, c.inPlace ? expected : kept);
    c.convert(nullptr, out.data());  // a null source does nothing
  }
  EXPECT_EQ(validFloat(nullptr), 1);
  EXPECT_EQ(validDouble(nullptr), 1);
}

namespace {

uint32_t bitsOf(float x) { return std::bit_cast<uint32_t>(x); }
uint64_t bitsOf(double x) { return std::bit_cast<uint64_t>(x); }

// The value a VAX word stands for, from the fields of the stored bytes.
long double vaxFloatValue(uint32_t w) {
  uint32_t e = w >> 7 & 0xFF, f = (w & 0x7F) << 16 | w >> 16;
  long double v = e == 0 ? 0.0L : std::ldexp(static_cast<long double>((1u << 23) + f), int(e) - 152);
  return w & 0x8000 ? -v : v;
}
long double vaxDoubleValue(uint64_t d) {
  uint64_t d0 = d & 0xFFFFFFFF, d1 = d >> 32;
  uint64_t e = d0 >> 7 & 0xFF;
  uint64_t f = (d0 & 0x7F) << 48 | (d0 >> 16) << 32 | (d1 & 0xFFFF) << 16 | d1 >> 16;
  long double v = std::ldexp(static_cast<long double>((uint64_t(1) << 55) + f), int(e) - 184);
  return d0 & 0x8000 ? -v : v;
}

template <typename Word>
Word through(Convert convert, Word in) {
  Word out;
  convert(&in, &out);
  return out;
}

}  // namespace

TEST(VaxFloat, AgreesWithTheValueDefinitionOverGeneratedPatterns) {
  std::fesetround(FE_TOWARDZERO);  // the decoder truncates; so does this reference
  std::mt19937 random(2024);
  for (uint32_t exponent = 0; exponent < 256; ++exponent)
    for (int i = 0; i < 4000; ++i) {
      uint32_t fraction = i == 0 ? 0 : i == 1 ? 0x7FFFFF : random() >> 9;
      if (exponent == 0 && i < 1000) fraction >>= i % 24;  // every denormal size
      uint32_t ieee = (random() & 0x80000000u) | exponent << 23 | fraction;
      float x = std::bit_cast<float>(ieee);
      uint32_t vax = through(encodeVaxFloat, ieee);
      if (exponent >= 254)
        EXPECT_EQ(vax, 0xFFFF7FFFu | (ieee >> 16 & 0x8000)) << std::hex << ieee;
      else if (std::fabs(x) < 0x1p-128f)
        EXPECT_EQ(vax, ieee >> 16 & 0x8000) << std::hex << ieee;
      else
        EXPECT_EQ(vaxFloatValue(vax), x) << std::hex << ieee;

      uint32_t word = random();
      uint32_t vaxExponent = word >> 7 & 0xFF;
      float expected = (word & 0x7FFF) == 0x7FFF && word >> 16 == 0xFFFF
                           ? INFINITY
                           : static_cast<float>(vaxFloatValue(word));
      if (vaxExponent == 0) expected = 0.0f;
      if (word & 0x8000) expected = std::copysign(expected, -1.0f);
      EXPECT_EQ(through(decodeVaxFloat, word), bitsOf(expected)) << std::hex << word;

      bool roundTrips = exponent >= 1 && exponent <= 253 && (ieee & 0x7FFFFFFF) != 0x7EFFFFFF;
      if (roundTrips) {
        EXPECT_EQ(through(decodeVaxFloat, vax), ieee) << std::hex << ieee;
      }
    }
  std::fesetround(FE_TONEAREST);
  EXPECT_EQ(through(decodeVaxFloat, through(encodeVaxFloat, 0xFEFFFFFFu)), 0xFF800000u);
  EXPECT_EQ(through(decodeVaxFloat, through(encodeVaxFloat, 0x7F800001u)), 0x7F800000u);
  EXPECT_EQ(through(decodeVaxFloat, 0xFFFE7FFFu), 0x7EFFFFFEu);
}

TEST(VaxDouble, AgreesWithTheValueDefinitionOverGeneratedPatterns) {
  std::fesetround(FE_TOWARDZERO);
  std::mt19937_64 random(7);
  for (uint64_t exponent = 0; exponent < 2048; exponent += 1 + exponent % 3)
    for (int i = 0; i < 300; ++i) {
      uint64_t ieee = (random() & uint64_t(1) << 63) | exponent << 52 | random() >> 12;
      double x = std::bit_cast<double>(ieee);
      uint64_t vax = through(encodeVaxDouble, ieee), sign = ieee >> 48 & 0x8000;
      if (exponent >= 1150)
        EXPECT_EQ(vax, 0xFFFFFFFFFFFF7FFFu | sign) << std::hex << ieee;
      else if (exponent <= 894)
        EXPECT_EQ(vax, sign) << std::hex << ieee;
      else {
        EXPECT_EQ(vaxDoubleValue(vax), x) << std::hex << ieee;
        EXPECT_EQ(through(decodeVaxDouble, vax), ieee);
      }

      uint64_t word = random() & ~uint64_t(0xFF80);  // every exponent, low ones first
      word |= uint64_t(i % 256) << 7;
      double expected = static_cast<double>(vaxDoubleValue(word));
      EXPECT_EQ(through(decodeVaxDouble, word), bitsOf(expected)) << std::hex << word;
      if (i % 256 != 0) {  // back to VAX: only the three lowest fraction bits go
        uint64_t back = through(encodeVaxDouble, through(decodeVaxDouble, word));
        EXPECT_EQ(back, word & ~(uint64_t(7) << 48)) << std::hex << word;
      }
    }
  std::fesetround(FE_TONEAREST);
}
