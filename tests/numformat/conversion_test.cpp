// SPDX-License-Identifier: MIT
// The converters: examples, values against their definitions, arrays as one-value calls; convert.
#include <fskit/numformat.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "numformat/arrays_internal.h"
#include "tests/support/test_support.h"

using fskit::numformat::findArrayFormat;
using fskit::test::runTool;

namespace {

using Convert = void (*)(void *, void *);

// A converter that takes a const source, as a Convert.
template <auto convert>
void call(void *in, void *out) {
  convert(in, out);
}

std::vector<unsigned char> hexBytes(const std::string &text) {
  std::vector<unsigned char> bytes;
  for (size_t at = 0; at + 1 < text.size(); at += 3)
    bytes.push_back(static_cast<unsigned char>(std::stoul(text.substr(at, 2), nullptr, 16)));
  return bytes;
}

// `from` gives `to` (source kept, nothing past it), in place if `inPlace`; null sources ignored.
void expectConversion(Convert convert, const char *from, const char *to, bool inPlace = true) {
  SCOPED_TRACE(std::string(from) + " -> " + to);
  auto source = hexBytes(from), expected = hexBytes(to), kept = source;
  std::vector<unsigned char> out(expected.size() + 1, 0xEE);
  convert(source.data(), out.data());
  EXPECT_EQ(source, kept);
  EXPECT_EQ(std::vector(out.begin(), out.end() - 1), expected);
  EXPECT_EQ(out.back(), 0xEE);
  convert(source.data(), nullptr);
  EXPECT_EQ(source, inPlace ? expected : kept);
  convert(nullptr, out.data());
}

// The value a VAX word stands for, from the fields of the stored bytes.
long double vaxFloatValue(uint32_t w) {
  uint32_t e = w >> 7 & 0xFF, f = (w & 0x7F) << 16 | w >> 16;
  long double v = e == 0 ? 0.0L : std::ldexp(static_cast<long double>((1u << 23) + f), int(e) - 152);
  return w & 0x8000 ? -v : v;
}
long double vaxDoubleValue(uint64_t d) {
  uint64_t d0 = d & 0xFFFFFFFF, d1 = d >> 32, e = d0 >> 7 & 0xFF;
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

TEST(NumberBytes, PublishedExamplesUnderEveryName) {
  // The values are the property tests'; these check the bytes around them.
  const char *single[][2] = {  // IEEE, VAX F; both ways
      {"00 00 80 3F", "80 40 00 00"}, {"00 00 80 7F", "FF 7F FF FF"},
      {"00 00 20 00", "80 00 00 00"}};  // 2^-128 exactly: the smallest VAX number
  for (auto [ieee, vax] : single) {
    expectConversion(encodeVaxFloat, ieee, vax);
    expectConversion(decodeVaxFloat, vax, ieee);
  }
  const char *twice[][2] = {  // IEEE, VAX D; both ways
      {"18 2D 44 54 FB 21 09 40", "49 41 DA 0F 21 A2 C0 68"},
      {"00 00 00 00 00 00 F0 FF", "FF FF FF FF FF FF FF FF"},
      {"00 00 00 00 00 00 00 80", "00 80 00 00 00 00 00 00"}};  // a zero fraction: not generated
  for (auto [ieee, vax] : twice) {
    expectConversion(encodeVaxDouble, ieee, vax);
    expectConversion(decodeVaxDouble, vax, ieee);
  }

  for (Convert swap : {decodeHpShort, encodeHpShort, decodeNovaUshort})
    expectConversion(swap, "12 34", "34 12");
  for (Convert swap : {decodeHpLong, encodeHpLong, decodeNovaUlong})
    expectConversion(swap, "12 34 56 78", "78 56 34 12");
  expectConversion(encodeHpDouble, "01 02 03 04 05 06 07 08", "04 03 02 01 08 07 06 05");
  expectConversion(call<decodeHpDouble>, "01 02 03 04 05 06 07 08", "04 03 02 01 08 07 06 05",
                   false);
  for (Convert copy : {call<decodeIeeeFloat>, call<encodeIeeeFloat>})
    expectConversion(copy, "01 02 03 04", "01 02 03 04", false);
  for (Convert copy : {call<decodeIeeeDouble>, call<encodeIeeeDouble>})
    expectConversion(copy, "01 02 03 04 05 06 07 08", "01 02 03 04 05 06 07 08", false);
  expectConversion(decodeNovaFloat, "C5 00 00 00", "00 00 00 80");  // -0: generated words miss it
  EXPECT_EQ(validFloat(nullptr), 1);
  EXPECT_EQ(validDouble(nullptr), 1);
}

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
      float expected = static_cast<float>(vaxFloatValue(word));
      if ((word | 0x8000) == 0xFFFFFFFF) expected = std::copysign(INFINITY, expected);
      EXPECT_EQ(through(decodeVaxFloat, word), std::bit_cast<uint32_t>(expected)) << std::hex << word;

      // Back exactly, but for the largest such value: its VAX word means infinity.
      if (exponent >= 1 && exponent <= 253 && (ieee & 0x7FFFFFFF) != 0x7EFFFFFF) {
        EXPECT_EQ(through(decodeVaxFloat, vax), ieee) << std::hex << ieee;
      }
    }
  std::fesetround(FE_TONEAREST);
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

      uint64_t word = (random() & ~uint64_t(0xFF80)) | uint64_t(i % 256) << 7;  // all exponents
      double expected = static_cast<double>(vaxDoubleValue(word));
      EXPECT_EQ(through(decodeVaxDouble, word), std::bit_cast<uint64_t>(expected)) << std::hex << word;
      if (i % 256 != 0) {  // back to VAX: only the three lowest fraction bits go
        uint64_t back = through(encodeVaxDouble, through(decodeVaxDouble, word));
        EXPECT_EQ(back, word & ~(uint64_t(7) << 48)) << std::hex << word;
      }
    }
  std::fesetround(FE_TONEAREST);
}

TEST(NovaFloatingPoint, RoundsTheDefinedValueToNearest) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 200000; ++i) {
    uint64_t word = random();
    unsigned char bytes[8];
    for (int b = 0; b < 8; ++b) bytes[b] = uint8_t(word >> (56 - 8 * b));
    // f / 2^bits x 16^(e-64), exact in long double (64 significant bits).
    auto value = [word](uint64_t f, int bits) {
      long double v = std::ldexp(static_cast<long double>(f), 4 * (int(word >> 56 & 0x7F) - 64) - bits);
      return word >> 63 ? -v : v;
    };
    float single;
    double twice;
    decodeNovaFloat(bytes, &single);
    decodeNovaDouble(bytes, &twice);
    EXPECT_EQ(std::bit_cast<uint32_t>(single),
              std::bit_cast<uint32_t>(static_cast<float>(value(word >> 32 & 0xFFFFFF, 24))));
    EXPECT_EQ(std::bit_cast<uint64_t>(twice),
              std::bit_cast<uint64_t>(static_cast<double>(value(word & 0xFFFFFFFFFFFFFFu, 56))));
  }
}

TEST(SixteenBitWords, EveryIncosAndQuorIntensityWordAlsoInPlace) {
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
  std::pair<float, uint16_t> encodings[] = {
      {3.3f, 0x1533},   {-5.0f, 0x1A00},   {5.0f, 0x1A00},      {0.0f, 0},
      {0.4999f, 0},     {-1e-40f, 0},      {0x1p31f, 0xFFFF},   {INFINITY, 0xFFFF},
      {NAN, 0xFFFF},    {2146959360.0f, 0xFFFF}, {2146959232.0f, 0xFFFE}};
  for (auto [value, word] : encodings) {
    uint16_t out = 0x5555;
    encodeQuorInty(&value, &out);
    EXPECT_EQ(out, word) << value;
  }
  // In place: a float over the Quor word's 4 bytes, the word over its first 2; INCOS has no room.
  unsigned char place[4] = {0xA0, 0x57, 0x34, 0x12};
  decodeQuorInty(place, nullptr);
  EXPECT_EQ(std::bit_cast<float>(place), 1000.0f);
  encodeQuorInty(place, nullptr);
  EXPECT_EQ(std::vector(place, place + 4), hexBytes("A0 57 7A 44"));  // 1000.0f's top half kept
  decodeIncosMagMass(place, nullptr);
  EXPECT_EQ(std::vector(place, place + 4), hexBytes("A0 57 7A 44"));
}

TEST(QuorRecord, ExamplesAndGeneratedMassWordsAtAnyAlignment) {
  // What is encoded, the record, what it decodes to.
  const std::tuple<double, float, uint8_t, const char *, double, float> cases[] = {
      {1.0, 1.0f, 0, "00 08 00 00 00 02", 1.0, 1.0f},
      {500.25, 1000.0f, 2, "A0 57 00 80 E8 93", 500.25, 1000.0f},
      {500.25, 1000.0f, 6, "A0 57 00 80 E8 93", 500.25, 1000.0f},
      {1234.5678, 250000.0f, 1, "42 97 A3 48 69 56", 1234.5677490234375, 249984.0f},
      {0.0, 0.0f, 3, "00 00 00 00 00 C0", 0.5, 0.5f},
      {-0x1p40, 1.0f, 0, "00 08 E7 FF FF 3F", 0x1p31 - 0x1p7, 1.0f},
  };
  unsigned char buffer[7];
  unsigned char *record = buffer + 1;  // the mass word lands at an odd address
  for (const auto &[mass, intensity, flags, bytes, mass2, intensity2] : cases) {
    SCOPED_TRACE(bytes);
    encodeQuorMassInty(&mass, &intensity, &flags, record);
    EXPECT_EQ(std::vector(record, record + 6), hexBytes(bytes));
    double massOut = 0;
    float intensityOut = 0;
    uint8_t flagsOut = 9;
    decodeQuorMassInty(record, nullptr, &intensityOut, &flagsOut);  // a null pointer skips its part
    decodeQuorMassInty(record, &massOut, nullptr, nullptr);
    EXPECT_EQ(massOut, mass2);
    EXPECT_EQ(intensityOut, intensity2);
    EXPECT_EQ(flagsOut, flags & 3);
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
  encodeQuorMassInty(nullptr, nullptr, nullptr, record);  // nothing to do, no crash
  decodeQuorMassInty(nullptr, nullptr, nullptr, nullptr);
}

TEST(ConvertTool, DecodesAndEncodesEveryFormat) {
  // Each line begins with what was given; hpshort and quorrec decode in the file test below.
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"vaxf", "8040 0000", "20c10000", "FF7FFFFF"}, "80 40 00 00\t1\n20 C1 00 00\t-2.5\nFF 7F FF FF\tinf\n"},
      {{"vaxd", "49 41 DA 0F 21 A2 C0 68"}, "49 41 DA 0F 21 A2 C0 68\t3.141592653589793\n"},
      {{"hplong", "FF FF FF FE"}, "FF FF FF FE\t4294967294\n"},
      {{"hpdouble", "00 00 00 00 3F F0 00 00"}, "00 00 00 00 3F F0 00 00\t1\n"},
      {{"novaf", "C1 28 00 00"}, "C1 28 00 00\t-2.5\n"},
      {{"novad", "41 32 43 F6 A8 88 5A 30"}, "41 32 43 F6 A8 88 5A 30\t3.141592653589793\n"},
      {{"incos", "00 20"}, "00 20\t32.015625\n"},
      {{"quorinty", "a0 57"}, "A0 57\t1000\n"},
      {{"--encode", "vaxd", "3.141592653589793"}, "3.141592653589793\t49 41 DA 0F 21 A2 C0 68\n"},
      {{"--encode", "vaxf", "-0", "1e39"}, "-0\t00 80 00 00\n1e39\tFF 7F FF FF\n"},
      {{"--encode", "hpshort", "-1", "65535"}, "-1\tFF FF\n65535\tFF FF\n"},
      {{"--encode", "hplong", "305419896"}, "305419896\t12 34 56 78\n"},
      {{"--encode", "hpdouble", "1"}, "1\t00 00 00 00 3F F0 00 00\n"},
      {{"--encode", "quorinty", "3.3"}, "3.3\t33 15\n"},
      {{"--encode", "quorrec", "1234.5678,250000,1", "1,1"},
       "1234.5678,250000,1\t42 97 A3 48 69 56\n1,1\t00 08 00 00 00 02\n"},
  };
  for (auto [args, out] : cases) {
    std::string header = args[0] == "--encode" ? "number\tbytes\n" : "bytes\tvalue\n";
    args.insert(args.begin(), "convert");
    auto result = runTool(args);
    EXPECT_EQ(result.status, 0) << args[1] << result.err;
    EXPECT_EQ(result.out, header + out) << args[1];
  }
}

TEST(ConvertTool, DumpsAFileAndReportsWhatDoesNotFit) {
  fskit::test::TempDir dir;
  std::string path = dir.file("spectrum.dat");
  fskit::test::writeFile(path, std::string("\x00\x08\x00\x00\x00\x02\xA0\x57\x00\x80\xE8\x93\x01", 13));
  auto result = runTool({"convert", "--file", path, "--format", "quorrec"});
  EXPECT_EQ(result.out, "offset\tvalue\n0\t1 1 0\n6\t500.25 1000 2\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "fskit convert: " + path + ": 1 byte left at the end, not a whole quorrec value\n");
  auto missing = runTool({"convert", "--file", dir.file("none"), "--format", "vaxf"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "fskit convert: cannot open " + dir.file("none") + ": No such file or directory\n");
  auto piped = runTool({"convert", "--json", "--file", "-", "--format", "hpshort"},
                       std::string("\x12\x34\x00\x01\xff", 5));
  EXPECT_EQ(piped.out, "{\"offset\":0,\"value\":\"4660\"}\n{\"offset\":2,\"value\":\"1\"}\n");
  EXPECT_EQ(piped.err, "fskit convert: standard input: 1 byte left at the end, not a whole hpshort value\n");

  for (std::vector<std::string> args : std::vector<std::vector<std::string>>{
           {"vaxf"}, {"nosuch", "00"}, {"vaxf", "80 40 00"}, {"vaxf", "8040000G"},
           {"--encode", "novaf", "1"}, {"--encode", "hpshort", "65536"},
           {"--encode", "quorrec", "1,1,4"}, {"--file", path}}) {
    args.insert(args.begin(), "convert");
    auto bad = runTool(args);
    EXPECT_EQ(bad.status, 2) << args.back();
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err.rfind("fskit convert: ", 0), 0u) << args.back();
  }
}

namespace {

// `convert` over values of `inSize` bytes one at a time, the results' `outSize` bytes in a row.
std::vector<unsigned char> oneAtATime(Convert convert, const std::vector<unsigned char> &in,
                                      size_t inSize, size_t outSize) {
  size_t count = in.size() / inSize;
  std::vector<unsigned char> out(count * outSize);
  for (size_t i = 0; i < count; ++i) {
    unsigned char value[16], result[16] = {};
    std::memcpy(value, in.data() + i * inSize, inSize);
    convert(value, result);
    std::memcpy(out.data() + i * outSize, result, outSize);
  }
  return out;
}

// An array converter over `in`, both buffers `shift` bytes into larger ones: any alignment works.
template <typename Array>
std::vector<unsigned char> throughArray(Array convert, const std::vector<unsigned char> &in,
                                        size_t inSize, size_t outSize, size_t shift = 0) {
  size_t count = in.size() / inSize;
  std::vector<unsigned char> from(in.size() + shift), to(count * outSize + shift);
  std::copy(in.begin(), in.end(), from.begin() + std::ptrdiff_t(shift));
  convert(from.data() + shift, to.data() + shift, count);
  return std::vector<unsigned char>(to.begin() + std::ptrdiff_t(shift), to.end());
}

std::vector<unsigned char> randomBytes(size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<unsigned char> bytes(size);
  for (unsigned char &byte : bytes) byte = static_cast<unsigned char>(random());
  return bytes;
}

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
  encodeQuorMassInty(&mass, &intensity, &record.flags, out);
}

// Every value of the top 16 bits (sign, exponent, high fraction); low halves at exponent edges.
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

}  // namespace

// Counts around the lane widths (eight or four lanes, then one value at a time), at odd addresses.
TEST(ArrayConverters, RandomBytesAsTheOneValueFunctions) {
  // Name, host size, the one-value decoder and encoder (null where the library only decodes).
  const std::tuple<const char *, size_t, Convert, Convert> formats[] = {
      {"vaxf", 4, decodeVaxFloat, encodeVaxFloat},   {"vaxd", 8, decodeVaxDouble, encodeVaxDouble},
      {"hpshort", 2, decodeHpShort, encodeHpShort},  {"hplong", 4, decodeHpLong, encodeHpLong},
      {"hpdouble", 8, call<decodeHpDouble>, encodeHpDouble},
      {"novaf", 4, decodeNovaFloat, nullptr},        {"novad", 8, decodeNovaDouble, nullptr},
      {"incos", 4, call<decodeIncosMagMass>, nullptr},
      {"quorinty", 4, decodeQuorInty, encodeQuorInty},
      {"novaushort", 2, decodeNovaUshort, nullptr},  {"novaulong", 4, decodeNovaUlong, nullptr},
      {"ieeef", 4, call<decodeIeeeFloat>, call<encodeIeeeFloat>},
      {"ieeed", 8, call<decodeIeeeDouble>, call<encodeIeeeDouble>},
      {"quorrec", 13, decodeRecord, encodeRecord},
  };
  for (const auto &[name, hostSize, decode, encode] : formats) {
    SCOPED_TRACE(name);
    const auto *format = findArrayFormat(name);
    ASSERT_NE(format, nullptr);
    ASSERT_EQ(format->encode == nullptr, encode == nullptr);
    for (size_t count : {0, 1, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33, 1000}) {
      auto in = randomBytes(count * format->size, unsigned(count));
      auto expected = oneAtATime(decode, in, format->size, hostSize);
      EXPECT_EQ(throughArray(format->decode, in, format->size, hostSize), expected) << count;
      EXPECT_EQ(throughArray(format->decode, in, format->size, hostSize, 3), expected) << count;
      if (encode == nullptr) continue;
      auto host = randomBytes(count * hostSize, unsigned(count) + 99);
      EXPECT_EQ(throughArray(format->encode, host, hostSize, format->size, 3),
                oneAtATime(encode, host, hostSize, format->size))
          << count;
    }
  }
}

TEST(ArrayConverters, FourByteFormatsOverEveryExponent) {
  auto vax = everyExponent(false, true), nova = everyExponent(true, false);
  auto ieee = everyExponent(false, false);  // what encoding takes: the patterns as host words
  const auto &vaxf = *findArrayFormat("vaxf"), &novaf = *findArrayFormat("novaf");
  EXPECT_EQ(throughArray(vaxf.decode, vax, 4, 4), oneAtATime(decodeVaxFloat, vax, 4, 4));
  EXPECT_EQ(throughArray(novaf.decode, nova, 4, 4), oneAtATime(decodeNovaFloat, nova, 4, 4));
  EXPECT_EQ(throughArray(vaxf.encode, ieee, 4, 4), oneAtATime(encodeVaxFloat, ieee, 4, 4));
}
