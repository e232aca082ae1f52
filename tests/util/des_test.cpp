// SPDX-License-Identifier: MIT
// The DES core against published vectors, and the string cipher's texts under the library's key.
#include <fskit/util.h>
#include <gtest/gtest.h>

#include "tests/support/test_support.h"
#include "util/des.h"

namespace des = fskit::util::des;

namespace {

uint32_t reversed(uint32_t word) {
  uint32_t out = 0;
  for (int i = 0; i < 32; ++i) out |= (word >> i & 1) << (31 - i);
  return out;
}

// A block as the standard writes it (bit 1 the number's highest) in the library's layout: bits
// 1-32 are word 1 from its lowest bit up, bits 33-64 word 0.
des::Block fromStandard(uint64_t value) {
  return {reversed(uint32_t(value)), reversed(uint32_t(value >> 32))};
}

std::string encrypt(const std::string &text) {
  std::string out(16 * (text.size() / 8 + 1) + 1, '#');
  desEncrypt(text.c_str(), out.data());
  return out.c_str();
}

std::string decrypt(const std::string &hex) {
  std::string out(hex.size() + 9, '#');
  EXPECT_EQ(desDecrypt(hex.c_str(), out.data()), 1);
  return out.c_str();
}

const std::string kPassword1 = "0E688E5551AA6337B8FCFDCFE3817807";

}  // namespace

TEST(Des, CoreMatchesPublishedVectorsUnderTheStandardSchedule) {
  // Key, plaintext, ciphertext: a widely published worked example; FIPS PUB 81, appendix B
  // ("Now is t"); SP 800-17, tables 1 (variable plaintext) and 2 (variable key).
  const uint64_t vectors[][3] = {
      {0x133457799BBCDFF1, 0x0123456789ABCDEF, 0x85E813540F0AB405},
      {0x0123456789ABCDEF, 0x4E6F772069732074, 0x3FA40E8A984D4815},
      {0x0101010101010101, 0x8000000000000000, 0x95F8A5E5DD31D900},
      {0x8001010101010101, 0x0000000000000000, 0x95A8D72813DAA94D}};
  for (const auto &v : vectors) {
    fskit::util::DesSchedule schedule;
    des::makeSchedule(fromStandard(v[0]), des::Rotations::standard, schedule);
    EXPECT_EQ(des::encipher(fromStandard(v[1]), schedule), fromStandard(v[2])) << std::hex << v[0];
    EXPECT_EQ(des::decipher(fromStandard(v[2]), schedule), fromStandard(v[1])) << std::hex << v[0];
  }
}

TEST(Des, LibraryKeyKnownAnswers) {
  // Worked out apart from this library with a plain DES written from FIPS PUB 46-3 (which gives
  // the standard's worked example), the library's key F1694B27983E5ADC, its register rotations
  // (0 0 1 1 1 1 1 1 0 1 1 1 1 1 1 0), blank padding, the first character in the lowest byte of
  // the first word, each word printed as 8 digits. Any text's round trip: fuzz/util/des_fuzz.
  EXPECT_EQ(encrypt(""), "D327261A7DD9ACD6");
  EXPECT_EQ(encrypt("password1"), kPassword1);
  EXPECT_EQ(decrypt(kPassword1), "password1");
  EXPECT_EQ(decrypt(encrypt("two words")), "two");
}

TEST(Des, DecryptReadsGroupsOfEightDigits) {
  EXPECT_EQ(decrypt("0e688e5551aa6337b8fcfdcfe3817807"), "password1");
  EXPECT_EQ(decrypt(kPassword1 + "ABC"), "password1");  // an odd last group is ignored
  EXPECT_EQ(decrypt("  688E5551AA6337B8FCFDCFE3817807"), decrypt("00" + kPassword1.substr(2)));
  EXPECT_EQ(decrypt("zzzzzzzzzzzzzzzz"), decrypt("0000000000000000"));
  // 128 groups are the most it reads; 129 leave the buffer untouched.
  std::string most = encrypt(std::string(512, 'x'));
  EXPECT_EQ(decrypt(most), std::string(512, 'x'));
  char out[8] = "keep";
  EXPECT_EQ(desDecrypt((most + "0").c_str(), out), 0);
  EXPECT_STREQ(out, "keep");
}

TEST(Des, ToolEncryptsAndDecrypts) {
  using fskit::test::runTool;
  auto encrypted = runTool({"des", "encrypt", "password1"});
  EXPECT_EQ(std::to_string(encrypted.status) + encrypted.out, "0" + kPassword1 + "\n");
  EXPECT_EQ(runTool({"des", "decrypt", kPassword1}).out, "password1\n");
  EXPECT_EQ(runTool({"des", "decrypt", std::string(1025, '0')}).status, 1);
  EXPECT_EQ(runTool({"des", "scramble", "x"}).status, 2);
}
