// SPDX-License-Identifier: MIT
// The classic parsers against the example element file (records 0 to 9); the richer formula text,
// composition and adducts against the shipped one; fskit formula, elements and pattern.
#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>

#include "chemistry/composition_internal.h"
#include "chemistry/ion_internal.h"
#include "tests/chemistry/example_table.h"

using namespace fskit::chemistry;
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
  std::vector<int32_t> counts, shifts;
};

Parsed parse(const char *formula, int32_t dotAll = 0) {
  Parsed p;
  char text[512] = "#", symbols[100][10];
  int32_t counts[100], shifts[100];
  p.result = fsTblParseMF(formula, 0, dotAll, text, &p.nominal, &p.mono, &p.average, &p.rdb, 0,
                          symbols, counts, nullptr, shifts);
  p.text = text;
  const int32_t n = std::max(p.result, 0);
  p.symbols.assign(symbols, symbols + n);
  p.counts.assign(counts, counts + n);
  p.shifts.assign(shifts, shifts + n);
  return p;
}

struct Ranged {
  int32_t result = 0;
  std::vector<std::string> symbols;
  std::vector<int32_t> low, high, flags;
};

Ranged parseRange(const char *formula, int32_t maxTokens = 0) {
  Ranged r;
  char symbols[100][10];
  int32_t low[100], high[100], flags[100];
  r.result = fsTblParseMFRange(formula, 0, maxTokens, symbols, low, high, nullptr, nullptr, flags);
  const int32_t n = std::max(r.result, 0);
  r.symbols.assign(symbols, symbols + n);
  r.low.assign(low, low + n);
  r.high.assign(high, high + n);
  r.flags.assign(flags, flags + n);
  return r;
}

using Strings = std::vector<std::string>;
using Ints = std::vector<int32_t>;

using FormulaText = ShippedTableTest;
using Composition = ShippedTableTest;
using Ion = ShippedTableTest;

FormulaMasses massesOf(const char *formula) { return formulaMasses(atomsOf(formula)); }

// A text that a reader (of formulas or adducts) refuses, and its words.
struct ErrorCase {
  const char *text, *error;
  size_t position;
};

bool nothingRead(const FormulaComposition &read) { return read.atoms.empty(); }
bool nothingRead(const Adduct &read) { return read.added.empty() && read.removed.empty(); }

// Each text refused as "ERROR at position N", with nothing read.
template <typename Read>
void expectErrors(std::initializer_list<ErrorCase> cases, Read read) {
  for (const ErrorCase &c : cases) {
    auto result = read(c.text);
    EXPECT_EQ(result.error, std::string(c.error) + " at position " + std::to_string(c.position))
        << c.text;
    EXPECT_EQ(result.errorPosition, c.position) << c.text;
    EXPECT_TRUE(nothingRead(result)) << c.text;
  }
}

}  // namespace

TEST_F(Formula, MergingParserSumsMassesAndWritesCanonicalText) {
  struct Row {
    const char *formula;
    int32_t dotAll, result;
    const char *text;
    int32_t nominal;
    double mono, average, rdb;
  } rows[] = {
      {"CH3CH2OH", 0, 3, "C2H6O", 46, 46.041865, 46.069, 0.0},
      {"C5 13C H12 O6", 0, 4, "C5.13CH12O6", 181, 181.066745, 181.148355, 1.0},
      {"C6H12O6", 1, 3, "C6.H12.O6", 180, 180.06339, 180.156, 1.0},
      {"c6h12o6", 0, 3, "C6H12O6", 180, 180.06339, 180.156, 1.0},
      {"", 0, 0, "", 0, 0.0, 0.0, 1.0},
      {"O6C6H12.", 0, 3, "C6H12O6", 180, 180.06339, 180.156, 1.0},  // trailing "." is harmless
      {"C0H", 0, 2, "CH", 13, 13.007825, 13.019, 1.5},              // C0 counts 1
      {"C1_5!H*2", 0, 2, "CH2", 14, 14.01565, 14.027, 1.0},         // marks and ranges ignored
      {"C613C", 0, 1, "C614", 7368, 7368.0, 7374.754, 615.0},       // the count swallows 13
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
  EXPECT_EQ(glucose.shifts, (Ints{0, 2, 0, 0}));
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
  EXPECT_EQ(r.symbols, (Strings{"C", "H", "O"}));
  EXPECT_EQ(r.low, (Ints{6, 10, 2}));
  EXPECT_EQ(r.high, (Ints{10, 20, 2}));
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
}

TEST_F(FormulaText, ReadsCompositionsInFirstAppearanceOrder) {
  const std::pair<const char *, std::vector<FormulaAtom>> cases[] = {
      {"(CH3)3COH", {{"C", 0, 4}, {"H", 0, 10}, {"O", 0, 1}}},
      {"Ca(OH)2", {{"Ca", 0, 1}, {"O", 0, 2}, {"H", 0, 2}}},
      {"((CH2)2O)3Na", {{"C", 0, 6}, {"H", 0, 12}, {"O", 0, 3}, {"Na", 0, 1}}},
      {"CuSO4\xC2\xB7" "5H2O", {{"Cu", 0, 1}, {"S", 0, 1}, {"O", 0, 9}, {"H", 0, 10}}},
      {"NaCl*H2O*2(CH3)2SO", {{"Na", 0, 1}, {"Cl", 0, 1}, {"H", 0, 14}, {"O", 0, 3},
                              {"C", 0, 4}, {"S", 0, 2}}},
      {"[13C]2C4H12O6", {{"C", 13, 2}, {"C", 0, 4}, {"H", 0, 12}, {"O", 0, 6}}},
      {"C([2H]3)2[13C]", {{"C", 0, 1}, {"H", 2, 6}, {"C", 13, 1}}},
      // Classic isotope labels: at the start, or after ".".
      {"13CH4", {{"C", 13, 1}, {"H", 0, 4}}},
      {"C5.13CH12O6", {{"C", 0, 5}, {"C", 13, 1}, {"H", 0, 12}, {"O", 0, 6}}},
      {"H1000000000", {{"H", 0, 1'000'000'000}}},
  };
  for (const auto &[formula, atoms] : cases) EXPECT_EQ(atomsOf(formula), atoms) << formula;
}

// PubChem's "Monoisotopic Mass" and "Molecular Weight" (0: rounded more coarsely than 0.01; every
// element used is in one of them) from the classic parser, and the same from the richer text.
TEST_F(FormulaText, MassesArePublishedOnesAndTheClassicParsers) {
  struct Compound {
    const char *text;
    double mono, average;
    const char *plain = nullptr;  // in classic text, when the text is not
  } compounds[] = {
      {"H2O", 18.010565, 18.015},       {"NH3", 17.026549, 17.031},
      {"C6H12O6", 180.063388, 180.16},  {"C27H46O", 386.354866, 0},
      {"C3H7NO2S", 121.019749, 121.16}, {"NaCl", 57.958622, 58.44},
      {"C6H5Br", 155.957462, 157.01},   {"C6H5F", 96.037528, 96.10},
      {"CH3I", 141.927947, 141.939},    {"H3PO4", 97.976896, 97.994},
      {"KCl", 73.932560, 74.55},        {"C4H12Si", 88.070827, 88.22},
      {"CuSO4", 0, 0},                  {"UF6", 0, 0},
      {"C1000H1600N280O300S10", 0, 0},  {"(CH3)3COH", 0, 0, "C4H10O"},
      {"CuSO4*5H2O", 0, 0, "CuSO9H10"}, {"Ca(OH)2", 0, 0, "CaO2H2"},
      {"[13C]2C4H12O6", 0, 0, "C4.13C2H12O6"},
  };
  for (const Compound &c : compounds) {
    SCOPED_TRACE(c.text);
    const char *plain = c.plain != nullptr ? c.plain : c.text;
    bool hill = plain[0] == 'C' && !std::islower(plain[1]);  // the shipped file is in Hill order
    char text[64] = "";
    double mono = 0, average = 0;  // the text null when not compared
    ASSERT_GT(fsTblParseMF(plain, 0, 0, hill ? text : nullptr, nullptr, &mono, &average, nullptr,
                           0, nullptr, nullptr, nullptr, nullptr),
              0);
    if (hill) { EXPECT_EQ(std::string(text), plain); }
    if (c.mono != 0) { EXPECT_NEAR(mono, c.mono, 1e-6); }
    if (c.average != 0) { EXPECT_NEAR(average, c.average, 0.01); }
    FormulaMasses masses = massesOf(c.text);
    EXPECT_DOUBLE_EQ(masses.monoisotopic, mono);
    EXPECT_DOUBLE_EQ(masses.average, average);
  }
  EXPECT_FALSE(formulaMasses({{"Xx", 0, 1}}).ok);
}

TEST_F(FormulaText, NamesEachErrorWithItsPosition) {
  expectErrors({
      {"", "empty formula", 0},
      {"C6H1Xx2", "unknown element 'Xx'", 4},
      {"CHabcdefghij", "unknown element 'Habcdefghij'", 1},
      {"C[99C]", "unknown isotope '99C'", 2},
      {"013CH4", "unknown isotope '013C'", 0},
      {"Ca(OH2", "unclosed '('", 2},
      {"CaOH)2", "unmatched ')'", 4},
      {"Ca()2", "empty group", 2},
      {"H0", "count 0", 1},
      {"H2O*0H2O", "count 0", 4},
      {"H1000000001", "count too large", 1},
      {"H2O*1000000000H99999999999", "count too large", 15},
      {"(H1001)1000000", "count too large", 0},
      {"H600000000O*H600000000", "count too large", 12},
      {"H2O%", "unexpected character '%'", 3},
      {"H2 O", "unexpected character '\\x20'", 2},
      {"C\xC2", "unexpected character '\\xC2'", 1},
      {"C6*", "empty part", 3},
      {"*H2O", "empty part", 0},
      {"CuSO4*5", "empty part", 6},
      {"[C]", "expected a mass number", 1},
      {"[13C", "unclosed '['", 0},
      {"[13C2]", "expected ']'", 4},
      {"C.", "expected an element symbol", 2},
  }, readFormulaText);
  EXPECT_EQ(readFormulaText(nullptr).error, "empty formula at position 0");
}

TEST_F(FormulaText, LimitsGroupNesting) {
  auto nested = [](size_t n) { return std::string(n, '(') + "H" + std::string(n, ')'); };
  EXPECT_EQ(atomsOf(nested(kMaxGroupDepth).c_str()), (std::vector<FormulaAtom>{{"H", 0, 1}}));
  EXPECT_EQ(readFormulaText(nested(kMaxGroupDepth + 1).c_str()).error,
            "groups nested deeper than 32 at position 32");
  // Far deeper text is refused, not a stack overflow.
  EXPECT_EQ(readFormulaText(nested(100000).c_str()).errorPosition, 32u);
}

TEST_F(Composition, PercentsAddUpToExactlyOneHundred) {
  for (const char *formula :
       {"C6H12O6", "C8H10N4O2", "CuSO4*5H2O", "H2O", "NaCl", "UF6", "C254H377N65O75S6",
        "C1000H1600N280O300S10", "[13C]2C4H12O6", "CHNOPSClBrIFNaKMgCaFeZnCuSe", "C3H3"}) {
    MassComposition shares = massComposition(atomsOf(formula));
    int64_t steps = 0;
    double mass = 0.0;
    for (const ElementShare &share : shares.elements) {
      steps += share.percentSteps;
      mass += share.mass;
      // Rounded to the step, never a whole step or more away.
      EXPECT_LT(std::fabs(double(share.percentSteps) / 1e4 - share.percent), 1e-4)
          << formula << " " << share.label;
    }
    EXPECT_EQ(steps, kPercentSteps) << formula;
    EXPECT_NEAR(mass, massesOf(formula).average, 1e-9) << formula;
  }
}

// Each isotope on its own, at its exact mass (the rounding is checked on the tool's output).
TEST_F(Composition, IsotopesApartAndUnknownElements) {
  MassComposition labelled = massComposition(atomsOf("[13C]C"));
  ASSERT_EQ(labelled.elements.size(), 2u);
  EXPECT_EQ(labelled.elements[0].label, "13C");
  EXPECT_NEAR(labelled.elements[0].mass, 13.00335483507, 1e-9);
  EXPECT_FALSE(massComposition({{"Xx", 0, 1}}).ok);
}

// By hand from the NIST masses H 1.00782503223, C 12, O 15.99491461957, Na 22.9897692820 and
// me 0.000548579909: glucose M = 180.06338810418, H2O 18.01056468403.
TEST_F(Ion, MzOfGlucoseAsComputedByHand) {
  double glucose = massesOf("C6H12O6").monoisotopic;
  const std::pair<const char *, double> cases[] = {
      {"[M+H]+", 181.070664556501},      // M + H - me
      {"[M-H]-", 179.056111651859},      // M - H + me
      {"[M+2H]2+", 91.038970504411},     // (M + 2H - 2me) / 2
      {"[2M+Na]+", 383.115996910451},    // 2M + Na - me
      {"[M-H2O+H]+", 163.060099872471},  // M - H2O + H - me
  };
  for (const auto &[adduct, mz] : cases)
    EXPECT_NEAR(adductMz(glucose, readAdduct(adduct)), mz, 1e-6) << adduct;
  // A plain charge: (M - me) / 1 and (M + 2me) / 2.
  EXPECT_NEAR(chargedMz(glucose, 1), 180.062839524271, 1e-9);
  EXPECT_NEAR(chargedMz(glucose, -2), 90.032242631999, 1e-9);
  EXPECT_TRUE(std::isnan(chargedMz(glucose, 0)));
  EXPECT_TRUE(std::isnan(adductMz(glucose, readAdduct("[M+H]"))));
}

TEST_F(Ion, ReadsMoleculesChargeAndTerms) {
  struct Case {
    const char *text;
    int64_t molecules;
    int32_t charge;
    std::vector<FormulaAtom> added, removed;
  } cases[] = {
      {"[M+NH4]+", 1, 1, {{"N", 0, 1}, {"H", 0, 4}}, {}},
      {"[M+Cl]-", 1, -1, {{"Cl", 0, 1}}, {}},
      {"[M]+", 1, 1, {}, {}},
      {"[3M-2H]2-", 3, -2, {}, {{"H", 0, 2}}},
      {"[M+2(CH3)2CO]+", 1, 1, {{"C", 0, 6}, {"H", 0, 12}, {"O", 0, 2}}, {}},
      {"[M+[13C]H3]12+", 1, 12, {{"C", 13, 1}, {"H", 0, 3}}, {}},
  };
  for (const Case &c : cases) {
    Adduct adduct = readAdduct(c.text);
    EXPECT_EQ(adduct.molecules, c.molecules) << c.text << ": " << adduct.error;
    EXPECT_EQ(adduct.charge, c.charge) << c.text;
    EXPECT_EQ(adduct.added, c.added) << c.text;
    EXPECT_EQ(adduct.removed, c.removed) << c.text;
  }
}

TEST_F(Ion, NamesEachErrorWithItsPosition) {
  expectErrors({
      {"", "expected '['", 0},
      {"[X+H]+", "expected 'M'", 1},
      {"[0M+H]+", "count 0", 1},
      {"[M+0H]+", "count 0", 3},
      {"[M+2H1000000000]+", "count too large", 3},
      {"[M+H", "unclosed '['", 0},
      {"[MH]+", "expected '+', '-' or ']'", 2},
      {"[M+]+", "expected a formula", 3},
      // The formula's own errors, at their place in the adduct text.
      {"[M-H2O+H2o]+", "unexpected character 'o'", 9},
      {"[M+H]", "expected the charge sign '+' or '-'", 5},
      {"[M+H]0+", "charge 0", 5},
      {"[M+H]1000000001+", "charge too large", 5},
      {"[M+H]++", "unexpected text after the charge", 6},
  }, readAdduct);
  EXPECT_EQ(readAdduct(nullptr).error, "expected '[' at position 0");
}

// fskit formula and fskit pattern where the shipped table is found only by the tool's own place.
TEST(ChemistryTool, OutputsAndErrors) {
  const std::string header = "formula\tcanonical\tnominal\tmonoisotopic\taverage\trdb";
  const std::string composition = "formula\telement\tcount\tmass\tpercent\n";
  const std::string peaks = "formula\tmz\tfraction\trelative\n";
  const std::string badCharge = "--charge needs a signed integer other than 0";
  struct Case {
    std::vector<std::string> args;
    std::string input;
    int status;
    std::string out, error;  // error: the message after "fskit COMMAND: "
  } cases[] = {
      {{"formula", "C5 13C H12 O6"}, "", 0,
       header + "\nC5 13C H12 O6\tC5.13CH12O6\t181\t181.066743\t181.1484\t1.0\n", ""},
      {{"formula", "--json", "H2O"}, "", 0,
       "{\"formula\":\"H2O\",\"canonical\":\"H2O\",\"nominal\":18,"
       "\"monoisotopic\":18.010565,\"average\":18.0150,\"rdb\":0.0}\n", ""},
      // A single - reads one formula per line, blank lines skipped.
      {{"formula", "-"}, "H2O\n\n  \nNA.CL\r\n", 0,
       header + "\nH2O\tH2O\t18\t18.010565\t18.0150\t0.0\nNA.CL\tClNa\t58\t57.958622\t58.4398\t0.0\n", ""},
      // A formula that does not read is reported; the others are printed.
      {{"formula", "H2O", "C6H5(CH3)"}, "", 1, header + "\nH2O\tH2O\t18\t18.010565\t18.0150\t0.0\n",
       "unknown symbol '(C' at position 5 of 'C6H5(CH3)'"},
      {{"formula"}, "", 2, "", "no formula given"},
      {{"formula", "--elements"}, "", 2, "", "--elements and --ini need a file name"},
      {{"formula", "--ini", "lab.ini", "C6H12O6"}, "", 0,
       header + "\nC6H12O6\tC6H12O6\t180\t180.063390\t180.1560\t1.0\n", ""},
      {{"formula", "--elements", "none.tbl", "C"}, "", 1, "",
       "none.tbl: No such file or directory"},
      {{"formula", "--adduct", "[M+H]+", "C6H12O6"}, "", 0,
       header + "\tmz\nC6H12O6\tC6H12O6\t180\t180.063388\t180.1560\t1.0\t181.070665\n", ""},
      {{"formula", "--json", "--adduct=[M+2H]2+", "C6H12O6"}, "", 0,
       "{\"formula\":\"C6H12O6\",\"canonical\":\"C6H12O6\",\"nominal\":180,"
       "\"monoisotopic\":180.063388,\"average\":180.1560,\"rdb\":1.0,\"mz\":91.038971}\n", ""},
      // H2CO3: H 3.250355, C 19.365084, O 77.384561 % round to 100.0001; cut to 4 decimals the
      // two missing steps go to the largest remainders, C's and O's.
      {{"formula", "--composition", "H2CO3"}, "", 0,
       composition + "H2CO3\tH\t2\t2.0160\t3.2503\nH2CO3\tC\t1\t12.0110\t19.3651\n"
                     "H2CO3\tO\t3\t47.9970\t77.3846\n", ""},
      {{"formula", "--composition", "--json", "H2O"}, "", 0,
       "{\"formula\":\"H2O\",\"element\":\"H\",\"count\":2,\"mass\":2.0160,\"percent\":11.1907}\n"
       "{\"formula\":\"H2O\",\"element\":\"O\",\"count\":1,\"mass\":15.9990,\"percent\":88.8093}\n", ""},
      {{"formula", "--adduct", "[M+Xx]+", "C6H12O6"}, "", 1, "",
       "unknown element 'Xx' at position 3 of adduct '[M+Xx]+'"},
      {{"formula", "--adduct"}, "", 2, "", "--adduct needs an adduct such as [M+H]+"},
      {{"formula", "--adduct", "[M+H]+", "--composition", "C"}, "", 2, "",
       "give --adduct or --composition, not both"},
      {{"formula", "--composition", "C6H1Xx2", "H2"}, "", 1,
       composition + "H2\tH\t2\t2.0160\t100.0000\n",
       "unknown element 'Xx' at position 4 of 'C6H1Xx2'"},
      // By hand from NIST's abundances (1H 99.9885, 2H 0.0115; 16O 99.757, 17O 0.038, 18O 0.205):
      // M 0.999885^2 * 0.99757; M+3 (4.7e-7) is below 0.01 % of M.
      {{"pattern", "H2O"}, "", 0,
       peaks + "H2O\t18.010565\t0.997340572\t100.0000\nH2O\t19.015557\t0.000609327319\t0.0611\n"
               "H2O\t20.014810\t0.00204962911\t0.2055\n", ""},
      // From standard input, as JSON, as [M+H]+: M 0.999885^3 * 0.99757.
      {{"pattern", "--json", "--adduct", "[M+H]+", "--min-relative", "1", "-"}, "H2O\n\n", 0,
       "{\"formula\":\"H2O\",\"mz\":19.017841,\"fraction\":0.997225878,"
       "\"relative\":100.0000}\n", ""},
      {{"pattern", "--adduct", "[M+H]+", "--charge", "1", "C"}, "", 2, "",
       "give --adduct or --charge, not both"},
      {{"pattern", "--resolution", "1000", "--fine", "C"}, "", 2, "",
       "give --resolution or --fine, not both"},
      {{"pattern", "--coverage", "0.9", "--min-relative", "1", "C"}, "", 2, "",
       "give --min-relative or --coverage, not both"},
      {{"pattern", "--charge", "0", "C"}, "", 2, "", badCharge},
      {{"pattern", "--charge", "2x", "C"}, "", 2, "", badCharge},
      {{"pattern", "--resolution", "-5", "C"}, "", 2, "", "--resolution needs a number above 0"},
      {{"pattern", "--min-relative", "0", "C"}, "", 2, "",
       "--min-relative needs a percent above 0 and at most 100"},
      {{"pattern", "--coverage", "99.9", "C"}, "", 2, "",
       "--coverage needs a fraction above 0 and at most 1 (e.g. 0.999)"},
      {{"pattern", "--svg", "a.svg", "C", "H2"}, "", 2, "", "--svg draws one formula"},
      {{"pattern", "--resolution"}, "", 2, "", "an option is missing its value"},
      {{"pattern", "--wide", "C"}, "", 2, "", "unknown option --wide"},
      {{"pattern", "C6(H2O"}, "", 1, peaks, "unclosed '(' at position 2 of 'C6(H2O'"},
      {{"pattern", "--adduct", "[M+H", "C"}, "", 1, "",
       "unclosed '[' at position 0 of adduct '[M+H'"},
      {{"pattern", "--adduct", "[M-H2O+H]+", "CH4"}, "", 1, peaks,
       "the adduct removes more O than the molecule has in [M-H2O+H]+ of 'CH4'"},
  };
  TempDir dir;
  writeFile(dir.file("example.tbl"), kExampleTable);
  writeFile(dir.file("lab.ini"), "[Formula Files]\nelementFile=example.tbl\n");
  for (const Case &c : cases) {
    auto result = runTool(c.args, c.input, dir.path());
    std::string trace = ::testing::PrintToString(c.args);
    EXPECT_EQ(result.status, c.status) << trace;
    EXPECT_EQ(result.out, c.out) << trace;
    std::string error = c.error.empty() ? "" : "fskit " + c.args[0] + ": " + c.error + "\n";
    EXPECT_EQ(result.err, error) << trace;
  }

  auto listed = runTool({"elements", "--elements", "example.tbl"}, "", dir.path());
  EXPECT_NE(listed.out.find("\n3\tH\tH\t1\t1\t1.007825000\t1.008000000\t100\t-1\t0\n"),
            std::string::npos) << listed.out;
  auto json = runTool({"elements", "--json", "--elements", "example.tbl"}, "", dir.path());
  EXPECT_NE(json.out.find("\n{\"index\":3,\"label\":\"H\",\"symbol\":\"H\",\"atomic\":1,"
                          "\"nominal\":1,\"monoisotopic\":1.007825000,\"average\":1.008000000,"
                          "\"abundance\":100,\"rdbFactor\":-1,\"shift\":0}\n"),
            std::string::npos) << json.out;
  // The library's own message goes to standard error as one line naming the command.
  writeFile(dir.file("bad.ini"), "[Formula Files]\nelementFile=none.tbl\n");
  auto viaLibrary = runTool({"formula", "--ini", "bad.ini", "C"}, "", dir.path());
  EXPECT_EQ(viaLibrary.status, 1);
  EXPECT_EQ(viaLibrary.out, "");
  EXPECT_EQ(viaLibrary.err.rfind("fskit formula: Failed to open element file ", 0), 0u)
      << viaLibrary.err;
  EXPECT_EQ(viaLibrary.err.find('\n'), viaLibrary.err.size() - 1) << viaLibrary.err;
}
