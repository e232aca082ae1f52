// SPDX-License-Identifier: MIT
// fskit pattern with the shipped element table.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

using namespace fskit::test;

namespace {

TEST(PatternTool, WaterByHandAndItsIons) {
  TempDir empty;
  // H2O from the NIST abundances (1H 99.9885, 2H 0.0115; 16O 99.757, 17O
  // 0.038, 18O 0.205 %), each mass number's configurations summed by hand:
  // M 0.999885^2 * 0.99757; M+1 2H1H16O and 1H2 17O; M+2 2H2 16O, 2H1H 17O
  // and 1H2 18O. M+3 (4.7e-7) is below 0.01 % of M.
  auto table = runTool({"pattern", "H2O"}, "", empty.path());
  EXPECT_EQ(table.status, 0) << table.err;
  EXPECT_EQ(table.out,
            "formula\tmz\tfraction\trelative\n"
            "H2O\t18.010565\t0.997340572\t100.0000\n"
            "H2O\t19.015557\t0.000609327319\t0.0611\n"
            "H2O\t20.014810\t0.00204962911\t0.2055\n");
  // The same from standard input, as JSON, as [M+H]+ and as a 2- ion:
  // (18.010565 + 1.007825 - 0.000549), M 0.999885^3 * 0.99757 = 0.997225877927;
  // (18.010565 + 2 * 0.000549) / 2.
  auto json = runTool({"pattern", "--json", "--adduct", "[M+H]+", "--min-relative", "1", "-"},
                      "H2O\n\n", empty.path());
  EXPECT_EQ(json.out, "{\"formula\":\"H2O\",\"mz\":19.017841,\"fraction\":0.997225878,"
                      "\"relative\":100.0000}\n");
  auto charged = runTool({"pattern", "--charge", "-2", "--coverage", "0.5", "H2O"}, "", empty.path());
  EXPECT_EQ(charged.out, "formula\tmz\tfraction\trelative\nH2O\t9.005831\t0.997340572\t100.0000\n");

  // --svg draws the same peaks under the formula and its ion, beside the table.
  auto drawn = runTool({"pattern", "--charge", "-2", "--svg", "w.svg", "H2O"}, "", empty.path());
  EXPECT_EQ(drawn.status, 0) << drawn.err;
  std::string svg = readText(empty.path() + "/w.svg");
  EXPECT_NE(svg.find("<svg"), std::string::npos);
  EXPECT_NE(svg.find(">H2O 2-</text>"), std::string::npos);
  EXPECT_NE(svg.find(">9.0058</text>"), std::string::npos);
  auto unwritable = runTool({"pattern", "--svg", "no/such/dir/w.svg", "H2O"}, "", empty.path());
  EXPECT_EQ(unwritable.status, 1);
  EXPECT_EQ(unwritable.err, "fskit pattern: cannot write no/such/dir/w.svg: No such file or directory\n");
}

TEST(PatternTool, RefusesWhatItCannotDo) {
  TempDir empty;
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string err;
  } cases[] = {
      {{"--adduct", "[M+H]+", "--charge", "1", "C"}, 2, "give --adduct or --charge, not both"},
      {{"--resolution", "1000", "--fine", "C"}, 2, "give --resolution or --fine, not both"},
      {{"--coverage", "0.9", "--min-relative", "1", "C"}, 2,
       "give --min-relative or --coverage, not both"},
      {{"--charge", "0", "C"}, 2, "--charge needs a signed integer other than 0"},
      {{"--charge", "2x", "C"}, 2, "--charge needs a signed integer other than 0"},
      {{"--resolution", "-5", "C"}, 2, "--resolution needs a number above 0"},
      {{"--min-relative", "0", "C"}, 2, "--min-relative needs a percent above 0 and at most 100"},
      {{"--coverage", "99.9", "C"}, 2,
       "--coverage needs a fraction above 0 and at most 1 (e.g. 0.999)"},
      {{"--svg", "a.svg", "C", "H2"}, 2, "--svg draws one formula"},
      {{"--resolution"}, 2, "an option is missing its value"},
      {{"--wide", "C"}, 2, "unknown option --wide"},
      {{"C6(H2O"}, 1, "unclosed '(' at position 2 of 'C6(H2O'"},
      {{"--adduct", "[M+H", "C"}, 1, "unclosed '[' at position 0 of adduct '[M+H'"},
      {{"--adduct", "[M-H2O+H]+", "CH4"}, 1,
       "the adduct removes more O than the molecule has in [M-H2O+H]+ of 'CH4'"},
  };
  for (const Case &c : cases) {
    std::vector<std::string> args{"pattern"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    auto result = runTool(args, "", empty.path());
    EXPECT_EQ(result.status, c.status) << c.err;
    EXPECT_EQ(result.err, "fskit pattern: " + c.err + "\n");
  }
}

}  // namespace
