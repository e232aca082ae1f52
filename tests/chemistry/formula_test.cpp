// SPDX-License-Identifier: MIT
// The formula parsers against the example element file (records 0 to 9); fskit formula (with
// --adduct and --composition, against the shipped table) and fskit elements.
#include <climits>
#include <string>
#include <vector>

#include "tests/chemistry/example_table.h"

using namespace fskit::test;

namespace {

class Formula : public ::testing::Test {
 protected:
  void SetUp() override { loadTable(dir_, kExampleTable); }
  TempDir dir_;
};

struct Parsed {
  int32_t result = 0;
  std::string text;
  int32_t nominal = 0;
  double mono = 0, average = 0, rdb = 0;
  std::vector<std::string> symbols;
  std::vector<int32_t> counts, atomic, shifts;
};

Parsed parse(const char *formula, int32_t dotAll = 0, int32_t maxTokens = 0) {
  Parsed p;
  char text[512] = "#", symbols[100][10];
  int32_t counts[100], atomic[100], shifts[100];
  p.result = fsTblParseMF(formula, 0, dotAll, text, &p.nominal, &p.mono, &p.average, &p.rdb,
                          maxTokens, symbols, counts, atomic, shifts);
  p.text = text;
  for (int32_t i = 0; i < p.result; ++i) {
    p.symbols.emplace_back(symbols[i]);
    p.counts.push_back(counts[i]);
    p.atomic.push_back(atomic[i]);
    p.shifts.push_back(shifts[i]);
  }
  return p;
}

struct Ranged {
  int32_t result = 0;
  std::vector<std::string> symbols;
  std::vector<int32_t> low, high, atomic, flags;
};

Ranged parseRange(const char *formula, int32_t maxTokens = 0) {
  Ranged r;
  char symbols[100][10];
  int32_t low[100], high[100], atomic[100], shifts[100], flags[100];
  r.result = fsTblParseMFRange(formula, 0, maxTokens, symbols, low, high, atomic, shifts, flags);
  for (int32_t i = 0; i < r.result; ++i) {
    r.symbols.emplace_back(symbols[i]);
    r.low.push_back(low[i]);
    r.high.push_back(high[i]);
    r.atomic.push_back(atomic[i]);
    r.flags.push_back(flags[i]);
  }
  return r;
}

using Strings = std::vector<std::string>;
using Ints = std::vector<int32_t>;

}  // namespace

TEST_F(Formula, MergingParserSumsMassesAndWritesCanonicalText) {
  struct Row {
    const char *formula;
    int32_t dotAll, result;
    const char *text;
    int32_t nominal;
    double mono, average, rdb;
  } rows[] = {
      {"C6H12O6", 0, 3, "C6H12O6", 180, 180.06339, 180.156, 1.0},
      {"CH3CH2OH", 0, 3, "C2H6O", 46, 46.041865, 46.069, 0.0},
      {"C5 13C H12 O6", 0, 4, "C5.13CH12O6", 181, 181.066745, 181.148355, 1.0},
      {"C6H12O6", 1, 3, "C6.H12.O6", 180, 180.06339, 180.156, 1.0},
      {"c6h12o6", 0, 3, "C6H12O6", 180, 180.06339, 180.156, 1.0},
      {"", 0, 0, "", 0, 0.0, 0.0, 1.0},
      {"O6C6H12.", 0, 3, "C6H12O6", 180, 180.06339, 180.156, 1.0},  // trailing "." is harmless
      {"C0H", 0, 2, "CH", 13, 13.007825, 13.019, 1.5},              // C0 counts 1
      {"C1_5!H*2", 0, 2, "CH2", 14, 14.01565, 14.027, 1.0},         // marks and ranges ignored
      {"C613C", 0, 1, "C614", 7368, 7368.0, 7374.754, 615.0},       // the count swallows 13
      {"C6 13C", 0, 2, "C6.13C", 85, 85.003355, 85.069355, 8.0},
      {"C\tO", 0, 2, "CO", 28, 27.994915, 28.01, 2.0},              // a tab does not separate
      {"2HHO", 0, 3, "H.2HO", 19, 19.016842, 19.021102, 0.0},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.formula);
    Parsed p = parse(row.formula, row.dotAll);
    EXPECT_EQ(p.result, row.result);
    EXPECT_EQ(p.text, row.text);
    EXPECT_EQ(p.nominal, row.nominal);
    EXPECT_NEAR(p.mono, row.mono, 1e-9);
    EXPECT_NEAR(p.average, row.average, 1e-9);
    EXPECT_DOUBLE_EQ(p.rdb, row.rdb);
  }
  Parsed glucose = parse("C5 13C H12 O6");
  EXPECT_EQ(glucose.symbols, (Strings{"C", "13C", "H", "O"}));
  EXPECT_EQ(glucose.counts, (Ints{5, 1, 12, 6}));
  EXPECT_EQ(glucose.atomic, (Ints{6, 6, 1, 8}));
  EXPECT_EQ(glucose.shifts, (Ints{0, 2, 0, 0}));
  EXPECT_EQ(parse("CH3CH2OH").counts, (Ints{2, 6, 1}));
  // At maxTokens distinct symbols the rest is not read.
  EXPECT_EQ(parse("CHO", 0, 2).text, "CH");
}

TEST_F(Formula, UnknownSymbolsGiveMinusTheCharactersConsumed) {
  struct Row {
    const char *formula;
    int32_t merging, ranged;
    const char *message;  // of the range parser
  } rows[] = {
      {"(CH3)2CO", -2, -2, "<(C> is an invalid symbol"},
      {"co2", -3, -3, "<Co> is an invalid symbol"},
      {"CO2 ", -3, 2, nullptr},  // the blank separates: Co
      {"C_5", -3, -3, "<C_> is an invalid symbol"},
      {"C..5", -4, -4, "<5> is an invalid symbol"},
      {"C1-10", -5, -5, "<-10> is an invalid symbol"},
      {"C2.5", -4, -4, nullptr},
      {"C+", -2, -2, nullptr},
      {"Uuo", -2, -2, "<Uu> is an invalid symbol"},
      {"HO\tNa\t", -6, -6, nullptr},  // a tab after a symbol is consumed
      {"H Xy ", -4, -5, "<Xy> is an invalid symbol"},  // a blank only by the range parser
      {"C2.", 1, -3, "<> is an invalid symbol"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.formula);
    Parsed p = parse(row.formula);
    EXPECT_EQ(p.result, row.merging);
    if (row.merging < 0) { EXPECT_EQ(p.text, ""); }
    std::string out = captureStdout([&] { EXPECT_EQ(parseRange(row.formula).result, row.ranged); });
    if (row.message != nullptr) {
      EXPECT_EQ(out, std::string("fsTblParseMFRange: ") + row.message + "\n");
    }
  }
  // Entries before the refused token are kept.
  char symbols[100][10];
  int32_t counts[100];
  EXPECT_EQ(fsTblParseMF("H2OXy", 0, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 0, symbols,
                         counts, nullptr, nullptr),
            -5);
  EXPECT_STREQ(symbols[1], "O");
  EXPECT_EQ(counts[0], 2);
}

TEST_F(Formula, RangeParserKeepsEveryTokenWithRangesAndMarks) {
  Ranged r = parseRange("C6_10H10..20!O*2");
  EXPECT_EQ(r.result, 3);
  EXPECT_EQ(r.symbols, (Strings{"C", "H", "O"}));
  EXPECT_EQ(r.low, (Ints{6, 10, 2}));
  EXPECT_EQ(r.high, (Ints{10, 20, 2}));
  EXPECT_EQ(r.atomic, (Ints{6, 1, 8}));
  EXPECT_EQ(r.flags, (Ints{0, 0, 3}));

  // A count may follow a blank: "C 13C" is C13 and C.
  Ranged swapped = parseRange("C10_6 C2.. C0 C 13C");
  EXPECT_EQ(swapped.low, (Ints{6, 2, 1, 13, 1}));
  EXPECT_EQ(swapped.high, (Ints{10, 2, 1, 13, 1}));
  EXPECT_EQ(swapped.symbols, (Strings{"C", "C", "C", "C", "C"}));
  EXPECT_EQ(parseRange("").result, 0);

  EXPECT_EQ(captureStdout([] { EXPECT_EQ(parseRange("CH", 2).result, 0); }),
            "fsTblParseMFRange: Exceeding number of tokens expected\n");
  captureStdout([] {  // separated: Co
    EXPECT_EQ(fsTblParseMFRange("CO", 1, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              -2);
  });
}

TEST_F(Formula, BadInputStaysWithinItsBounds) {
  std::string longFormula;
  for (int i = 0; i < 700; ++i) longFormula += "CH";
  Parsed p = parse(longFormula.c_str());
  EXPECT_EQ(p.result, 2);
  EXPECT_EQ(p.text, "C700H700");

  Parsed huge = parse("C99999999999H4");
  EXPECT_EQ(huge.counts, (Ints{INT32_MAX, 4}));
  EXPECT_EQ(huge.nominal, INT32_MAX);

  char symbols[100][10];
  int32_t low[100];
  captureStdout([&] {
    EXPECT_EQ(fsTblParseMFRange("H ((((((((((((C2", 0, 0, symbols, low, nullptr, nullptr,
                                nullptr, nullptr),
              -16);
  });
  EXPECT_STREQ(symbols[1], "(((((((((");
  EXPECT_EQ(parse("H ((((((((((((C2").result, -16);
  EXPECT_EQ(fsTblParseMF("C", 0, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 0, nullptr,
                         nullptr, nullptr, nullptr),
            1);
}

// fskit formula in an empty directory (the shipped table found by the tool's own place).
TEST(ChemistryTool, FormulaOutputsAndErrors) {
  const std::string header = "formula\tcanonical\tnominal\tmonoisotopic\taverage\trdb";
  const std::string composition = "formula\telement\tcount\tmass\tpercent\n";
  struct Case {
    std::vector<std::string> args;
    std::string input;
    int status;
    std::string out, err;
  } cases[] = {
      {{"C6H12O6", "C5 13C H12 O6", "NA.CL"}, "", 0,
       header + "\nC6H12O6\tC6H12O6\t180\t180.063388\t180.1560\t1.0\n"
                "C5 13C H12 O6\tC5.13CH12O6\t181\t181.066743\t181.1484\t1.0\n"
                "NA.CL\tClNa\t58\t57.958622\t58.4398\t0.0\n", ""},
      {{"--json", "H2O"}, "", 0,
       "{\"formula\":\"H2O\",\"canonical\":\"H2O\",\"nominal\":18,"
       "\"monoisotopic\":18.010565,\"average\":18.0150,\"rdb\":0.0}\n", ""},
      // A single - reads one formula per line, blank lines skipped.
      {{"-"}, "H2O\n\n  \nNA.CL\r\n", 0,
       header + "\nH2O\tH2O\t18\t18.010565\t18.0150\t0.0\nNA.CL\tClNa\t58\t57.958622\t58.4398\t0.0\n", ""},
      // A formula that does not read is reported; the others are printed.
      {{"H2O", "C6H5(CH3)"}, "", 1, header + "\nH2O\tH2O\t18\t18.010565\t18.0150\t0.0\n",
       "fskit formula: unknown symbol '(C' at position 5 of 'C6H5(CH3)'\n"},
      {{}, "", 2, "", "fskit formula: no formula given\n"},
      {{"--elements"}, "", 2, "", "fskit formula: --elements and --ini need a file name\n"},
      {{"--adduct", "[M+H]+", "C6H12O6"}, "", 0,
       header + "\tmz\nC6H12O6\tC6H12O6\t180\t180.063388\t180.1560\t1.0\t181.070665\n", ""},
      {{"--json", "--adduct=[M+2H]2+", "C6H12O6"}, "", 0,
       "{\"formula\":\"C6H12O6\",\"canonical\":\"C6H12O6\",\"nominal\":180,"
       "\"monoisotopic\":180.063388,\"average\":180.1560,\"rdb\":1.0,\"mz\":91.038971}\n", ""},
      // H2CO3: H 3.250355, C 19.365084, O 77.384561 % round to 100.0001; cut to 4 decimals the
      // two missing steps go to the largest remainders, C's and O's.
      {{"--composition", "H2CO3"}, "", 0,
       composition + "H2CO3\tH\t2\t2.0160\t3.2503\nH2CO3\tC\t1\t12.0110\t19.3651\n"
                     "H2CO3\tO\t3\t47.9970\t77.3846\n", ""},
      {{"--composition", "--json", "H2O"}, "", 0,
       "{\"formula\":\"H2O\",\"element\":\"H\",\"count\":2,\"mass\":2.0160,\"percent\":11.1907}\n"
       "{\"formula\":\"H2O\",\"element\":\"O\",\"count\":1,\"mass\":15.9990,\"percent\":88.8093}\n", ""},
      {{"--adduct", "[M+Xx]+", "C6H12O6"}, "", 1, "",
       "fskit formula: unknown element 'Xx' at position 3 of adduct '[M+Xx]+'\n"},
      {{"--adduct"}, "", 2, "", "fskit formula: --adduct needs an adduct such as [M+H]+\n"},
      {{"--adduct", "[M+H]+", "--composition", "C"}, "", 2, "",
       "fskit formula: give --adduct or --composition, not both\n"},
      {{"--composition", "C6H1Xx2", "H2"}, "", 1, composition + "H2\tH\t2\t2.0160\t100.0000\n",
       "fskit formula: unknown element 'Xx' at position 4 of 'C6H1Xx2'\n"},
  };
  TempDir empty;
  for (Case &c : cases) {
    c.args.insert(c.args.begin(), "formula");
    auto result = runTool(c.args, c.input, empty.path());
    std::string trace = c.args.size() > 1 ? c.args[1] + " " + c.args.back() : "";
    EXPECT_EQ(result.status, c.status) << trace;
    EXPECT_EQ(result.out, c.out) << trace;
    EXPECT_EQ(result.err, c.err) << trace;
  }
}

TEST(ChemistryTool, ElementFileFromOptionOrIniFile) {
  TempDir dir;
  writeFile(dir.file("example.tbl"), kExampleTable);
  writeFile(dir.file("lab.ini"), "[Formula Files]\nelementFile=example.tbl\n");
  auto listed = runTool({"elements", "--elements", "example.tbl"}, "", dir.path());
  EXPECT_EQ(listed.status, 0) << listed.err;
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
  // The library's own message goes to standard error as one line naming the command.
  writeFile(dir.file("bad.ini"), "[Formula Files]\nelementFile=none.tbl\n");
  auto viaLibrary = runTool({"formula", "--ini", "bad.ini", "C"}, "", dir.path());
  EXPECT_EQ(viaLibrary.status, 1);
  EXPECT_EQ(viaLibrary.out, "");
  EXPECT_EQ(viaLibrary.err.rfind("fskit formula: Failed to open element file ", 0), 0u)
      << viaLibrary.err;
  EXPECT_EQ(viaLibrary.err.find('\n'), viaLibrary.err.size() - 1) << viaLibrary.err;
}
