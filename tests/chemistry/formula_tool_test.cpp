// SPDX-License-Identifier: MIT
// fskit formula --adduct and --composition with the shipped element table.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

using namespace fskit::test;

namespace {

TEST(ChemistryTool, FormulaAdductAddsAnMzColumn) {
  TempDir empty;
  auto plus = runTool({"formula", "--adduct", "[M+H]+", "C6H12O6"}, "", empty.path());
  EXPECT_EQ(plus.status, 0) << plus.err;
  EXPECT_EQ(plus.out,
            "formula\tcanonical\tnominal\tmonoisotopic\taverage\trdb\tmz\n"
            "C6H12O6\tC6H12O6\t180\t180.063388\t180.1560\t1.0\t181.070665\n");
  auto json = runTool({"formula", "--json", "--adduct=[M+2H]2+", "C6H12O6"}, "", empty.path());
  EXPECT_EQ(json.out,
            "{\"formula\":\"C6H12O6\",\"canonical\":\"C6H12O6\",\"nominal\":180,"
            "\"monoisotopic\":180.063388,\"average\":180.1560,\"rdb\":1.0,"
            "\"mz\":91.038971}\n");
}

TEST(ChemistryTool, FormulaCompositionByMass) {
  TempDir empty;
  // H2CO3, 62.024 in all: H 2.016 is 3.250355 %, C 12.011 19.365084 %, O 47.997
  // 77.384561 %. Rounded to the nearest they would add up to 100.0001; cut
  // to 4 decimals they miss two steps, which go to the largest remainders,
  // C's (0.8448) and O's (0.6082).
  auto table = runTool({"formula", "--composition", "H2CO3"}, "", empty.path());
  EXPECT_EQ(table.status, 0) << table.err;
  EXPECT_EQ(table.out,
            "formula\telement\tcount\tmass\tpercent\n"
            "H2CO3\tH\t2\t2.0160\t3.2503\n"
            "H2CO3\tC\t1\t12.0110\t19.3651\n"
            "H2CO3\tO\t3\t47.9970\t77.3846\n");
  auto json = runTool({"formula", "--composition", "--json", "H2O"}, "", empty.path());
  EXPECT_EQ(json.out,
            "{\"formula\":\"H2O\",\"element\":\"H\",\"count\":2,\"mass\":2.0160,"
            "\"percent\":11.1907}\n"
            "{\"formula\":\"H2O\",\"element\":\"O\",\"count\":1,\"mass\":15.9990,"
            "\"percent\":88.8093}\n");
}

TEST(ChemistryTool, FormulaAdductAndCompositionErrors) {
  TempDir empty;
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string out, err;
  } cases[] = {
      {{"formula", "--adduct", "[M+Xx]+", "C6H12O6"}, 1, "",
       "fskit formula: unknown element 'Xx' at position 3 of adduct '[M+Xx]+'\n"},
      {{"formula", "--adduct", "M+H", "C"}, 1, "",
       "fskit formula: expected '[' at position 0 of adduct 'M+H'\n"},
      {{"formula", "--adduct"}, 2, "", "fskit formula: --adduct needs an adduct such as [M+H]+\n"},
      {{"formula", "--adduct", "[M+H]+", "--composition", "C"}, 2, "",
       "fskit formula: give --adduct or --composition, not both\n"},
      // A formula that does not read is reported; the others are printed.
      {{"formula", "--composition", "C6H1Xx2", "H2"}, 1,
       "formula\telement\tcount\tmass\tpercent\nH2\tH\t2\t2.0160\t100.0000\n",
       "fskit formula: unknown element 'Xx' at position 4 of 'C6H1Xx2'\n"},
  };
  for (const Case &c : cases) {
    auto result = runTool(c.args, "", empty.path());
    EXPECT_EQ(result.status, c.status) << c.args[1] << " " << c.args[2];
    EXPECT_EQ(result.out, c.out) << c.args[2];
    EXPECT_EQ(result.err, c.err) << c.args[2];
  }
}

}  // namespace
