// SPDX-License-Identifier: MIT
// fskit convert: values on the command line both ways, a whole file, and the
// usage errors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

using fskit::test::runTool;

TEST(ConvertTool, DecodesAndEncodesEveryFormat) {
  // Each line begins with what was given: the bytes as read, or the number.
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"vaxf", "8040 0000", "20c10000", "FF7FFFFF"}, "80 40 00 00\t1\n20 C1 00 00\t-2.5\nFF 7F FF FF\tinf\n"},
      {{"vaxd", "49 41 DA 0F 21 A2 C0 68"}, "49 41 DA 0F 21 A2 C0 68\t3.141592653589793\n"},
      {{"hpshort", "12 34"}, "12 34\t4660\n"},
      {{"hplong", "FF FF FF FE"}, "FF FF FF FE\t4294967294\n"},
      {{"hpdouble", "00 00 00 00 3F F0 00 00"}, "00 00 00 00 3F F0 00 00\t1\n"},
      {{"novaf", "C1 28 00 00"}, "C1 28 00 00\t-2.5\n"},
      {{"novad", "41 32 43 F6 A8 88 5A 30"}, "41 32 43 F6 A8 88 5A 30\t3.141592653589793\n"},
      {{"incos", "00 20"}, "00 20\t32.015625\n"},
      {{"quorinty", "a0 57"}, "A0 57\t1000\n"},
      {{"quorrec", "42 97 A3 48 69 56"}, "42 97 A3 48 69 56\t1234.5677490234375 249984 1\n"},
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
  EXPECT_EQ(runTool({"convert", "--json", "quorrec", "42 97 A3 48 69 56"}).out,
            "{\"bytes\":\"42 97 A3 48 69 56\",\"value\":\"1234.5677490234375 249984 1\"}\n");
  EXPECT_EQ(runTool({"convert", "--json", "--encode", "vaxf", "1"}).out,
            "{\"number\":\"1\",\"bytes\":\"80 40 00 00\"}\n");
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
  // FILE - is standard input.
  auto piped = runTool({"convert", "--json", "--file", "-", "--format", "hpshort"},
                       std::string("\x12\x34\x00\x01\xff", 5));
  EXPECT_EQ(piped.out, "{\"offset\":0,\"value\":\"4660\"}\n{\"offset\":2,\"value\":\"1\"}\n");
  EXPECT_EQ(piped.err, "fskit convert: standard input: 1 byte left at the end, not a whole hpshort value\n");

  for (std::vector<std::string> args : std::vector<std::vector<std::string>>{
           {"vaxf"}, {"nosuch", "00"}, {"vaxf", "80 40 00"}, {"vaxf", "8040000G"},
           {"--encode", "novaf", "1"}, {"--encode", "hpshort", "65536"},
           {"--encode", "quorrec", "1,1,4"}, {"--file", path}, {"--bogus"}}) {
    args.insert(args.begin(), "convert");
    auto bad = runTool(args);
    EXPECT_EQ(bad.status, 2) << args.back();
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err.rfind("fskit convert: ", 0), 0u) << args.back();
  }
}
