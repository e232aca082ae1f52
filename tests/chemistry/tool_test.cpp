// SPDX-License-Identifier: MIT
// fskit formula and fskit elements.
#include <gtest/gtest.h>

#include <string>

#include "tests/chemistry/example_table.h"

using namespace fskit::test;

TEST(ChemistryTool, FormulaUsesTheShippedTableFromAnyDirectory) {
  TempDir empty;
  auto result = runTool({"formula", "C6H12O6", "C5 13C H12 O6", "NA.CL"}, "", empty.path());
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out,
            "formula\tcanonical\tnominal\tmonoisotopic\taverage\trdb\n"
            "C6H12O6\tC6H12O6\t180\t180.063388\t180.1560\t1.0\n"
            "C5 13C H12 O6\tC5.13CH12O6\t181\t181.066743\t181.1484\t1.0\n"
            "NA.CL\tClNa\t58\t57.958622\t58.4398\t0.0\n");
  auto json = runTool({"formula", "--json", "H2O"}, "", empty.path());
  EXPECT_EQ(json.out,
            "{\"formula\":\"H2O\",\"canonical\":\"H2O\",\"nominal\":18,"
            "\"monoisotopic\":18.010565,\"average\":18.0150,\"rdb\":0.0}\n");

  // A single - reads one formula per line, blank lines skipped.
  auto piped = runTool({"formula", "-"}, "H2O\n\n  \nNA.CL\r\n", empty.path());
  EXPECT_EQ(piped.status, 0) << piped.err;
  EXPECT_EQ(piped.out,
            "formula\tcanonical\tnominal\tmonoisotopic\taverage\trdb\n"
            "H2O\tH2O\t18\t18.010565\t18.0150\t0.0\nNA.CL\tClNa\t58\t57.958622\t58.4398\t0.0\n");

  auto bad = runTool({"formula", "H2O", "C6H5(CH3)"}, "", empty.path());
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.err, "fskit formula: unknown symbol '(C' at position 5 of 'C6H5(CH3)'\n");
  EXPECT_EQ(runTool({"formula"}).status, 2);
  EXPECT_EQ(runTool({"formula", "--elements"}).status, 2);
}

TEST(ChemistryTool, ElementFileFromOptionOrIniFile) {
  TempDir dir;
  writeFile(dir.file("example.tbl"), kExampleTable);
  writeFile(dir.file("lab.ini"), "[Formula Files]\nelementFile=example.tbl\n");
  auto listed = runTool({"elements", "--elements", "example.tbl"}, "", dir.path());
  EXPECT_EQ(listed.status, 0) << listed.err;
  // Every field of a record; the records themselves are the library tests'.
  EXPECT_NE(listed.out.find("\n3\tH\tH\t1\t1\t1.007825000\t1.008000000\t100\t-1\t0\n"),
            std::string::npos) << listed.out;
  auto json = runTool({"elements", "--json", "--elements", "example.tbl"}, "", dir.path());
  EXPECT_NE(json.out.find("\n{\"index\":3,\"label\":\"H\",\"symbol\":\"H\",\"atomic\":1,"
                          "\"nominal\":1,\"monoisotopic\":1.007825000,\"average\":1.008000000,"
                          "\"abundance\":100,\"rdbFactor\":-1,\"shift\":0}\n"),
            std::string::npos) << json.out;
  auto viaIni = runTool({"formula", "--ini", "lab.ini", "C6H12O6"}, "", dir.path());
  EXPECT_EQ(viaIni.out.substr(viaIni.out.find('\n') + 1),
            "C6H12O6\tC6H12O6\t180\t180.063390\t180.1560\t1.0\n");
  auto missing = runTool({"formula", "--elements", "none.tbl", "C"}, "", dir.path());
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "fskit formula: none.tbl: No such file or directory\n");
  // The library's own message (an INI file naming a missing table) goes to
  // standard error as one line naming the command.
  writeFile(dir.file("bad.ini"), "[Formula Files]\nelementFile=none.tbl\n");
  auto viaLibrary = runTool({"formula", "--ini", "bad.ini", "C"}, "", dir.path());
  EXPECT_EQ(viaLibrary.status, 1);
  EXPECT_EQ(viaLibrary.out, "");
  EXPECT_EQ(viaLibrary.err.rfind("fskit formula: Failed to open element file ", 0), 0u)
      << viaLibrary.err;
  EXPECT_EQ(viaLibrary.err.find('\n'), viaLibrary.err.size() - 1) << viaLibrary.err;
}
