// SPDX-License-Identifier: MIT
// Cases that once went wrong in the chemistry family, one line each on what did.
#include <fskit/chemistry.h>
#include <fskit/ini.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/chemistry/example_table.h"

using namespace fskit::test;

namespace {

std::string elementLines(int elements) {
  std::string text;
  for (int i = 0; i < elements; ++i)
    text += "E" + std::to_string(i % 100) + " 6 12.011 12 - 12C 12.0 98.9 0 2\n";
  return text;
}

}  // namespace

TEST(ChemistryRegression, DecimalFieldsReadAsAtofReadsThem) {
  const double infinity = std::numeric_limits<double>::infinity();
  struct Case {
    const char *field;  // the average mass field of an element line
    double expected;
  } cases[] = {
      // These used to read as infinity or NaN: a field that does not begin
      // with a number is 0.
      {"inf", 0.0},
      {"-inf", 0.0},
      {"INFINITY", 0.0},
      {"nan", 0.0},
      {"+nan", 0.0},
      // These used to read as 0: beyond the range of a double is infinite.
      {"1e999", infinity},
      {"-1e999", -infinity},
      {"123456789e301", infinity},
      {"0.0001e309", 1e305},
      // Already right, kept so: too small is 0, and the longest number counts.
      {"1e-999", 0.0},
      {"0.00000001e-320", 0.0},
      {"+.5e1", 5.0},
      {".5", 0.5},
      {"1e", 1.0},
      {"2.5x", 2.5},
      {"0x10", 0.0},
      {"+-1", 0.0},
      {".", 0.0},
  };
  TempDir dir;
  for (const Case &c : cases) {
    SCOPED_TRACE(c.field);
    loadTable(dir, std::string("C 6 ") + c.field + " 12 - 12C 12.0 98.9 0 2\n",
              "case" + std::to_string(&c - cases) + ".tbl");
    FsElementRecord record;
    ASSERT_EQ(fsGetElementInfo(0, &record), 1);
    if (c.expected == 0.0)
      EXPECT_EQ(record.averageMass, 0.0);
    else
      EXPECT_DOUBLE_EQ(record.averageMass, c.expected);
  }
}

TEST(ChemistryRegression, SymbolsOfAFullTableCanBeRead) {
  struct Case {
    std::string file;
    int32_t index;
    int32_t result;
    const char *symbol;
  } cases[] = {
      // A file of 500 records gives count -1; fsGetElemSymbol used to refuse
      // every index of it, though the records are there.
      {elementLines(250), 0, 1, "E0"},
      {elementLines(250), 5, 1, "E2"},
      {elementLines(250), 499, 1, "E49"},
      {elementLines(250), 500, 0, ""},
      // 499 records and an element line that does not fit: only 499 are read.
      {elementLines(249) + "  13C 13.0 1\n" + elementLines(1), 498, 1, "E48"},
      {elementLines(249) + "  13C 13.0 1\n" + elementLines(1), 499, 0, ""},
  };
  TempDir dir;
  for (const Case &c : cases) {
    SCOPED_TRACE(c.index);
    loadTable(dir, c.file, "full" + std::to_string(&c - cases) + ".tbl");
    ASSERT_EQ(fsElementTableCount(), -1);
    char symbol[4] = "###";
    EXPECT_EQ(fsGetElemSymbol(c.index, symbol), c.result);
    EXPECT_STREQ(symbol, c.symbol);
  }
}

TEST(ChemistryRegression, WindowsLineEndsReadAsLineEnds) {
  // A file written on Windows used to give a "\r" field: a line of only CR LF
  // became an element record, and every last field carried the CR.
  std::string crlf;
  for (char c : std::string(kExampleTable) + "\n") crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  TempDir dir;
  loadTable(dir, kExampleTable, "lf.tbl");
  const int32_t count = fsElementTableCount();
  std::vector<FsElementRecord> expected(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) fsGetElementInfo(i, &expected[size_t(i)]);
  loadTable(dir, crlf, "crlf.tbl");
  ASSERT_EQ(fsElementTableCount(), count);
  for (int32_t i = 0; i < count; ++i) {
    FsElementRecord record;
    fsGetElementInfo(i, &record);
    EXPECT_EQ(std::memcmp(&record, &expected[size_t(i)], sizeof record), 0) << i;
  }
}

TEST(ChemistryRegression, ADirectoryIsAnElementFileThatDoesNotOpen) {
  // A directory opened as an empty stream: the load reported success with an
  // empty table, and the first candidate that was a directory ended the search.
  TempDir dir;
  ChangeDir inside(dir.path());
  loadTable(dir, kExampleTable);
  ASSERT_EQ(fsElementTableCount(), 10);
  const std::string tables = dir.file("tables");
  ASSERT_TRUE(std::filesystem::create_directory(tables));
  EXPECT_EQ(captureStdout([&] { EXPECT_EQ(fsLoadElemTable(tables.c_str()), 0); }),
            "Failed to open element file " + tables + "\n");
  EXPECT_EQ(fsElementTableCount(), 0);
  EXPECT_EQ(captureStdout([] { EXPECT_EQ(fsFindElement("C", nullptr), -1); }),
            "fsFindElement: No element table present\n");

  // The configured name and the first default name are directories: the
  // search goes on to the next default, a file.
  writeFile("fskit.ini", "[Formula Files]\nelementFile=tables\n");
  ASSERT_EQ(fsIniReadFile("fskit.ini"), 1000);
  ASSERT_TRUE(std::filesystem::create_directory("kw_elements.tbl"));
  writeFile("kw_ele.tbl", kExampleTable);
  EXPECT_EQ(captureStdout([] { EXPECT_EQ(fsInitElemTable(1000, 1), 1); }), "");
  EXPECT_EQ(fsElementTableCount(), 10);
  // With no file among them, the failure of a name that does not open.
  std::filesystem::remove("kw_ele.tbl");
  EXPECT_EQ(captureStdout([] { EXPECT_EQ(fsInitElemTable(1000, 1), 0); }),
            "Failed to open element file kw_elements.tbl\n");
  EXPECT_EQ(fsElementTableCount(), 0);
  fsIniReleaseFile(1000);
}
