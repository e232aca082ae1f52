// SPDX-License-Identifier: MIT
// The element table: the element file's rules, loading, lookups and the messages of each
// failure; the shipped element file complete.
#include <fskit/frame.h>
#include <fskit/ini.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>

#include "chemistry/element_load_internal.h"
#include "tests/chemistry/example_table.h"

using namespace fskit::test;

namespace {

// Elements E0 to E99, then E0 again; each with one isotope.
std::string elementLines(int elements) {
  std::string text;
  for (int i = 0; i < elements; ++i)
    text += "E" + std::to_string(i % 100) + " 6 12.011 12 - 12C 12.0 98.9 0 2\n";
  return text;
}

const AfterEachTest reset{[] {
  for (int32_t handle = 1000; handle < 1010; ++handle) fsIniReleaseFile(handle);
  fsInitElemTable(0, 0);
  fsDefaultMessage();
}};

}  // namespace

// Caught: with CR LF line ends a line of only CR LF became a record; the last fields kept the CR.
TEST(ElementTable, ExampleFileWithWindowsLineEndsGivesRecordsInFileOrder) {
  std::string crlf;
  for (char c : std::string(kExampleTable) + "\n") crlf += c == '\n' ? "\r\n" : std::string(1, c);
  TempDir dir;
  loadTable(dir, crlf);
  ASSERT_EQ(fsElementTableCount(), 10);
  // label symbol mono average abundance nominal atomic aux rdb shift
  const char *rows[] = {"C C 12 12.011 100 12 6 0 2 0",
                        "12C C 12 12 98.9 12 6 0 2 1",
                        "13C C 13.003355 13.003355 1.1 13 6 0 2 2",
                        "H H 1.007825 1.008 100 1 1 0 -1 0",
                        "1H H 1.007825 1.007825 99.985 1 1 0 -1 1",
                        "2H H 2.014102 2.014102 0.015 2 1 0 -1 2",
                        "O O 15.994915 15.999 100 16 8 0 0 0",
                        "16O O 15.994915 15.994915 99.762 16 8 0 0 1",
                        "17O O 16.999131 16.999131 0.038 17 8 0 0 2",
                        "18O O 17.999159 17.999159 0.2 18 8 0 0 3"};
  for (int i = 0; i < 10; ++i) {
    FsElementRecord record;
    ASSERT_EQ(fsGetElementInfo(i, &record), 1);
    const std::string label(record.label, strnlen(record.label, sizeof record.label));
    char text[160];
    std::snprintf(text, sizeof text, "%s %s %.15g %.15g %.15g %d %d %d %d %d", label.c_str(),
                  record.symbol, record.monoMass, record.averageMass, record.abundance,
                  record.nominalMass, record.atomicNumber, record.auxValue, record.rdbFactor,
                  record.isotopeShift);
    EXPECT_EQ(text, std::string(rows[i]));
    EXPECT_EQ(fsFindElemInTbl(label.c_str()), i);
  }
  for (const char *absent : {"o", "C ", ""}) EXPECT_EQ(fsFindElemInTbl(absent), -1) << absent;

  FsElementRecord found, untouched;
  std::memset(&untouched, 0x5a, sizeof untouched);
  found = untouched;
  EXPECT_EQ(fsFindElement("Xx", &found), -1);
  EXPECT_EQ(std::memcmp(&found, &untouched, sizeof found), 0);
}

TEST(ElementTable, LoadsEachFileNameOnce) {
  TempDir dir;
  std::string path = loadTable(dir, kExampleTable);
  // The same name in another case is not read again, whatever the file holds now.
  writeFile(path, elementLines(1));
  EXPECT_EQ(fsLoadElemTable(dir.file("Elements.TBL").c_str()), 1);
  EXPECT_EQ(fsElementTableCount(), 10);
  loadTable(dir, elementLines(2), "other.tbl");
  EXPECT_EQ(fsElementTableCount(), 4);
  // fsInitElemTable forgets the recorded name: the next load reads again.
  EXPECT_EQ(fsInitElemTable(0, 0), 1);
  EXPECT_EQ(fsLoadElemTable(path.c_str()), 1);
  EXPECT_EQ(fsElementTableCount(), 2);
}

// The Python package's load: a file that gives no usable table leaves the one in use.
TEST(ElementTable, LoadKeepingTheTableInUse) {
  using fskit::chemistry::loadElementFileKeepingTable;
  TempDir dir;
  loadTable(dir, kExampleTable);
  const std::string missing = dir.file("missing.tbl"), other = dir.file("other.tbl");
  EXPECT_EQ(captureStdout([&] { EXPECT_FALSE(loadElementFileKeepingTable(missing.c_str())); }),
            "Failed to open element file " + missing + "\n");
  writeFile(dir.file("empty.tbl"), "");
  writeFile(dir.file("full.tbl"), elementLines(250));  // fills the block: count -1
  for (const char *unusable : {"empty.tbl", "full.tbl"})
    EXPECT_FALSE(loadElementFileKeepingTable(dir.file(unusable).c_str())) << unusable;
  EXPECT_EQ(fsElementTableCount(), 10);
  EXPECT_EQ(fsFindElemInTbl("13C"), 2);
  writeFile(other, elementLines(2));
  EXPECT_TRUE(loadElementFileKeepingTable(other.c_str()));
  EXPECT_EQ(fsElementTableCount(), 4);
  // Its name is recorded as fsLoadElemTable's: not read again.
  writeFile(other, elementLines(1));
  EXPECT_TRUE(loadElementFileKeepingTable(other.c_str()));
  EXPECT_EQ(fsLoadElemTable(other.c_str()), 1);
  EXPECT_EQ(fsElementTableCount(), 4);
}

TEST(ElementFile, LayoutRulesAndOverlongInput) {
  TempDir dir;
  std::string longLine = "Zz 99 1.5 1 - 1Zz 1.25 100 7 3" + std::string(120, ' ') + "  2Zz 2.5 0\n";
  loadTable(dir,
            "  9Ab 9.0 1.0\n"                              // no element yet: skipped
            "Element Z average\n"                          // header
            "Atomic number\n"                              // header
            "\n \t \n"
            "\tNa 11 22.99 23 - 23Na 22.98977 100 0 -1\n"  // one tab: an element
            " \t D 2.014102 0.015\n"                       // two delimiters: an isotope
            "element 1 1 1 - 123456789Ab 1.0000000000000000000000005 100\n" +
                longLine + "Na 1 1 1 - 1Na 1 1 0 0");      // no line end; label already used
  struct Row {
    const char *label;
    int index, nominal, shift;
    double mono;
  } rows[] = {{"Na", 0, 23, 0, 22.98977}, {"23Na", 1, 23, 1, 22.98977},
              {"D", 2, 0, -23, 2.014102}, {"element", 3, 1, 0, 1.0},
              {"12345678", 4, int16_t(12345678), 0, 1.0},  // the label keeps 8 characters
              {"Zz", 5, 1, 0, 1.25},      {"2Zz", 7, 2, 2, 2.5}};
  EXPECT_EQ(fsElementTableCount(), 10);
  for (const Row &row : rows) {
    SCOPED_TRACE(row.label);
    FsElementRecord record;
    ASSERT_EQ(fsFindElement(row.label, &record), row.index);
    EXPECT_EQ(record.nominalMass, row.nominal);
    if (row.shift != 0) { EXPECT_EQ(record.isotopeShift, row.shift); }
    EXPECT_DOUBLE_EQ(record.monoMass, row.mono);
  }
  FsElementRecord zz;
  fsGetElementInfo(5, &zz);
  EXPECT_EQ(zz.auxValue, 7);
  EXPECT_EQ(zz.rdbFactor, 3);
}

TEST(ElementFile, FillingAllFiveHundredRecordsLeavesAnUnusableTable) {
  TempDir dir;
  loadTable(dir, elementLines(249) + "  13C 13.003355 1.1\n", "499.tbl");
  EXPECT_EQ(fsElementTableCount(), 499);
  EXPECT_EQ(fsFindElemInTbl("13C"), 498);

  // 499 records and an element line that does not fit: only 499 are read. fsGetElemSymbol used
  // to refuse every index of a full table, though the records are there.
  struct Full {
    std::string file;
    std::vector<std::pair<int32_t, const char *>> symbols;  // index, symbol ("": none)
  } fullTables[] = {
      {elementLines(250), {{0, "E0"}, {5, "E2"}, {499, "E49"}, {500, ""}}},
      {elementLines(249) + "  13C 13.0 1\n" + elementLines(1), {{498, "E48"}, {499, ""}}}};
  for (const Full &full : fullTables) {
    loadTable(dir, full.file, "full" + std::to_string(full.file.size()) + ".tbl");
    EXPECT_EQ(fsElementTableCount(), -1);
    EXPECT_EQ(captureStdout([] {
                EXPECT_EQ(fsFindElemInTbl("E0"), -1);
                EXPECT_EQ(fsFindElement("E0", nullptr), -1);
                EXPECT_EQ(fsGetElementInfo(0, nullptr), 0);
              }),
              "findElemInTbl: No element table present\n"
              "fsGetElementInfo: Index 0 does not exist in element table\n");
    for (auto [index, expected] : full.symbols) {
      char symbol[4] = "###";
      EXPECT_EQ(fsGetElemSymbol(index, symbol), expected[0] != '\0' ? 1 : 0) << index;
      EXPECT_STREQ(symbol, expected);
    }
  }
}

TEST(ElementFile, DecimalFieldsReadAsAtofReadsThem) {
  const double infinity = std::numeric_limits<double>::infinity();
  struct Case {
    const char *field;  // the average mass field of an element line
    double expected;
  } cases[] = {
      {"inf", 0.0},    {"nan", 0.0},                                // used to read as inf, NaN
      {"1e999", infinity}, {"-1e999", -infinity}, {"0.0001e309", 1e305},  // used to read as 0
      {"1e-999", 0.0}, {"+.5e1", 5.0}, {"2.5x", 2.5}, {"0x10", 0.0},      // already right
  };
  TempDir dir;
  for (const Case &c : cases) {
    SCOPED_TRACE(c.field);
    loadTable(dir, std::string("C 6 ") + c.field + " 12 - 12C 12.0 98.9 0 2\n",
              "case" + std::to_string(&c - cases) + ".tbl");
    FsElementRecord record;
    ASSERT_EQ(fsGetElementInfo(0, &record), 1);
    EXPECT_EQ(record.averageMass, c.expected);  // all exact
  }
}

// Caught: a directory loaded as an empty table, and a directory candidate ended the search.
TEST(ElementTable, TheConfiguredOrADefaultFileAtOnceOrOnFirstLookup) {
  TempDir dir;
  ChangeDir inside(dir.path());
  loadTable(dir, kExampleTable);
  ASSERT_EQ(fsElementTableCount(), 10);
  const std::string tables = dir.file("tables");
  ASSERT_TRUE(std::filesystem::create_directory(tables));
  EXPECT_EQ(captureStdout([&] { EXPECT_EQ(fsLoadElemTable(tables.c_str()), 0); }),
            "Failed to open element file " + tables + "\n");
  EXPECT_EQ(fsElementTableCount(), 0);
  EXPECT_EQ(captureStdout([] {
              EXPECT_EQ(fsFindElement("C", nullptr), -1);
              EXPECT_EQ(fsGetElementInfo(0, nullptr), 0);
            }),
            "fsFindElement: No element table present\n"
            "fsGetElementInfo: No element table present\n");

  writeFile("chosen.tbl", "H 1 1.008 1 - 1H 1.007825 99.985 0 -1\n");
  writeFile("fskit.ini", "[Formula Files]\nelementFile=chosen.tbl\n");
  ASSERT_EQ(fsIniReadFile("fskit.ini"), 1000);
  EXPECT_EQ(fsInitElemTable(1000, 0), 1);
  EXPECT_EQ(fsElementTableCount(), 0);
  EXPECT_EQ(fsFindElemInTbl("H"), 0);
  EXPECT_EQ(fsElementTableCount(), 2);
  // A value longer than any INI line (set, not read) is taken whole; it does not open.
  writeFile("kw_ele.tbl", kExampleTable);
  fsIniSetValue(1000, "Formula Files", "elementFile", std::string(3000, 'x').c_str(), "");
  EXPECT_EQ(fsInitElemTable(1000, 1), 1);
  EXPECT_EQ(fsElementTableCount(), 10);
  // The configured name and the first default name are directories: the next default is read.
  fsIniSetValue(1000, "Formula Files", "elementFile", "tables", "");
  ASSERT_TRUE(std::filesystem::create_directory("kw_elements.tbl"));
  EXPECT_EQ(captureStdout([] { EXPECT_EQ(fsInitElemTable(1000, 1), 1); }), "");
  EXPECT_EQ(fsElementTableCount(), 10);
  // With no file among them, the failure of a name that does not open.
  std::filesystem::remove("kw_ele.tbl");
  EXPECT_EQ(captureStdout([] { EXPECT_EQ(fsInitElemTable(1000, 1), 0); }),
            "Failed to open element file kw_elements.tbl\n");
  EXPECT_EQ(fsElementTableCount(), 0);
}

TEST_F(ShippedTableTest, HoldsEveryElementWithItsReferenceIsotope) {
  std::string formula;  // all 118 element symbols
  int32_t count = fsElementTableCount();
  bool seen[119] = {};
  for (int32_t i = 0; i < count; ++i) {
    FsElementRecord element;
    ASSERT_EQ(fsGetElementInfo(i, &element), 1);
    if (element.isotopeShift != 0) continue;
    formula += element.symbol;
    SCOPED_TRACE(element.symbol);
    ASSERT_TRUE(element.atomicNumber >= 1 && element.atomicNumber <= 118);
    EXPECT_FALSE(seen[element.atomicNumber]);
    seen[element.atomicNumber] = true;
    // The reference isotope (shift 1) is listed and gives the element its exact mass.
    std::string reference = std::to_string(element.nominalMass) + element.symbol;
    FsElementRecord isotope;
    ASSERT_GE(fsFindElement(reference.c_str(), &isotope), 0);
    EXPECT_EQ(isotope.isotopeShift, 1);
    EXPECT_EQ(isotope.monoMass, element.monoMass);
    EXPECT_NEAR(element.monoMass, element.nominalMass, 0.5);
  }
  for (int z = 1; z <= 118; ++z) EXPECT_TRUE(seen[z]) << z;
  // As one formula: the first 100 distinct symbols, or all when the caller makes room.
  static char text[4096], symbols[200][10];
  static int32_t counts[200];
  EXPECT_EQ(fsTblParseMF(formula.c_str(), 0, 0, text, nullptr, nullptr, nullptr, nullptr, 0,
                         symbols, counts, nullptr, nullptr),
            100);
  EXPECT_EQ(fsTblParseMF(formula.c_str(), 0, 0, text, nullptr, nullptr, nullptr, nullptr, 200,
                         symbols, counts, nullptr, nullptr),
            118);
  EXPECT_STREQ(symbols[117], "Zr");
}
