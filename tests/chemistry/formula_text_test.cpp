// SPDX-License-Identifier: MIT
// The richer formula text against the shipped element file: compositions,
// masses as the classic parser gives them, and every error with its position.
#include "chemistry/formula_text_internal.h"

#include <fskit/chemistry.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace fskit::chemistry;

namespace {

class FormulaText : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(fsLoadElemTable(FSKIT_SOURCE_DIR "/data/kw_elements.tbl"), 1);
  }
};

double classicMono(const char *formula, double *average = nullptr) {
  double mono = 0, avg = 0;
  EXPECT_GT(fsTblParseMF(formula, 0, 0, nullptr, nullptr, &mono, &avg, nullptr, 0, nullptr,
                         nullptr, nullptr, nullptr), 0) << formula;
  if (average != nullptr) *average = avg;
  return mono;
}

FormulaMasses massesOf(const char *formula) {
  FormulaComposition read = readFormulaText(formula);
  EXPECT_TRUE(read.ok()) << formula << ": " << read.error;
  return formulaMasses(read.atoms);
}

TEST_F(FormulaText, ReadsCompositionsInFirstAppearanceOrder) {
  struct Case {
    const char *formula;
    std::vector<FormulaAtom> atoms;
  } cases[] = {
      {"C6H12O6", {{"C", 0, 6}, {"H", 0, 12}, {"O", 0, 6}}},
      {"(CH3)3COH", {{"C", 0, 4}, {"H", 0, 10}, {"O", 0, 1}}},
      {"Ca(OH)2", {{"Ca", 0, 1}, {"O", 0, 2}, {"H", 0, 2}}},
      {"((CH2)2O)3Na", {{"C", 0, 6}, {"H", 0, 12}, {"O", 0, 3}, {"Na", 0, 1}}},
      {"CuSO4*5H2O", {{"Cu", 0, 1}, {"S", 0, 1}, {"O", 0, 9}, {"H", 0, 10}}},
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
  for (const Case &c : cases) {
    FormulaComposition read = readFormulaText(c.formula);
    EXPECT_TRUE(read.ok()) << c.formula << ": " << read.error;
    EXPECT_EQ(read.atoms, c.atoms) << c.formula;
  }
}

TEST_F(FormulaText, MassesAgreeWithTheClassicParser) {
  for (const char *plain : {"C6H12O6", "H2O", "CuSO4", "NaCl", "Fe2O3", "UF6", "C8H10N4O2",
                            "C254H377N65O75S6", "C1000H1600N280O300S10"}) {
    double average = 0, mono = classicMono(plain, &average);
    FormulaMasses masses = massesOf(plain);
    EXPECT_TRUE(masses.ok);
    EXPECT_DOUBLE_EQ(masses.monoisotopic, mono) << plain;
    EXPECT_DOUBLE_EQ(masses.average, average) << plain;
  }
  struct Same {
    const char *text, *plain;
  } same[] = {{"(CH3)3COH", "C4H10O"}, {"CuSO4*5H2O", "CuSO9H10"}, {"Ca(OH)2", "CaO2H2"}};
  for (const Same &s : same) {
    double average = 0, mono = classicMono(s.plain, &average);
    EXPECT_NEAR(massesOf(s.text).monoisotopic, mono, 1e-9) << s.text;
    EXPECT_NEAR(massesOf(s.text).average, average, 1e-9) << s.text;
  }
  FsElementRecord c13;
  ASSERT_GE(fsFindElement("13C", &c13), 0);
  EXPECT_NEAR(massesOf("[13C]2C4H12O6").monoisotopic,
              classicMono("C6H12O6") + 2 * (c13.monoMass - 12.0), 1e-9);
  EXPECT_FALSE(formulaMasses({{"Xx", 0, 1}}).ok);
}

TEST_F(FormulaText, NamesEachErrorWithItsPosition) {
  struct Case {
    const char *formula, *error;
    size_t position;
  } cases[] = {
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
      {"h2o", "unexpected character 'h'", 0},
      {"C\xC2", "unexpected character '\\xC2'", 1},
      {"C6*", "empty part", 3},
      {"*H2O", "empty part", 0},
      {"CuSO4*5", "empty part", 6},
      {"[C]", "expected a mass number", 1},
      {"[13C", "unclosed '['", 0},
      {"[13C2]", "expected ']'", 4},
      {"C.", "expected an element symbol", 2},
  };
  for (const Case &c : cases) {
    FormulaComposition read = readFormulaText(c.formula);
    EXPECT_EQ(read.error, std::string(c.error) + " at position " + std::to_string(c.position))
        << c.formula;
    EXPECT_EQ(read.errorPosition, c.position) << c.formula;
    EXPECT_TRUE(read.atoms.empty()) << c.formula;
  }
  EXPECT_EQ(readFormulaText(nullptr).error, "empty formula at position 0");
}

TEST_F(FormulaText, LimitsGroupNesting) {
  auto nested = [](size_t depth) {
    return std::string(depth, '(') + "H" + std::string(depth, ')');
  };
  FormulaComposition deepest = readFormulaText(nested(kMaxGroupDepth).c_str());
  EXPECT_EQ(deepest.atoms, (std::vector<FormulaAtom>{{"H", 0, 1}})) << deepest.error;
  EXPECT_EQ(readFormulaText(nested(kMaxGroupDepth + 1).c_str()).error,
            "groups nested deeper than 32 at position 32");
  // Far deeper text is refused, not a stack overflow.
  EXPECT_EQ(readFormulaText(nested(100000).c_str()).errorPosition, 32u);
}

}  // namespace
