// SPDX-License-Identifier: MIT
// The richer formula text against the shipped element file: compositions, masses, errors with
// their positions, composition by mass, and adduct text with the m/z of ions computed by hand.
#include "chemistry/formula_text_internal.h"

#include <fskit/chemistry.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "chemistry/composition_internal.h"
#include "chemistry/ion_internal.h"

#include "tests/chemistry/example_table.h"

using namespace fskit::chemistry;

namespace {

using FormulaText = fskit::test::ShippedTableTest;
using fskit::test::atomsOf;

double classicMono(const char *formula, double *average = nullptr) {
  double mono = 0, avg = 0;
  EXPECT_GT(fsTblParseMF(formula, 0, 0, nullptr, nullptr, &mono, &avg, nullptr, 0, nullptr,
                         nullptr, nullptr, nullptr), 0) << formula;
  if (average != nullptr) *average = avg;
  return mono;
}

FormulaMasses massesOf(const char *formula) { return formulaMasses(atomsOf(formula)); }

// A text that a reader (of formulas or adducts) refuses, and its words.
struct ErrorCase {
  const char *text, *error;
  size_t position;
};

// The reader's error as it words it: "ERROR at position N".
template <typename Read>
void expectErrorAt(const Read &read, const ErrorCase &c) {
  EXPECT_EQ(read.error, std::string(c.error) + " at position " + std::to_string(c.position))
      << c.text;
  EXPECT_EQ(read.errorPosition, c.position) << c.text;
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
  for (const Case &c : cases) EXPECT_EQ(atomsOf(c.formula), c.atoms) << c.formula;
}

TEST_F(FormulaText, MassesAgreeWithTheClassicParser) {
  for (const char *plain : {"C6H12O6", "CuSO4", "UF6", "C1000H1600N280O300S10"}) {
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
  const ErrorCase cases[] = {
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
  for (const ErrorCase &c : cases) {
    FormulaComposition read = readFormulaText(c.text);
    expectErrorAt(read, c);
    EXPECT_TRUE(read.atoms.empty()) << c.text;
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

using Composition = FormulaText;

MassComposition compositionOf(const char *formula) { return massComposition(atomsOf(formula)); }

TEST_F(Composition, PercentsAddUpToExactlyOneHundred) {
  for (const char *formula :
       {"C6H12O6", "C8H10N4O2", "CuSO4*5H2O", "H2O", "NaCl", "UF6", "C254H377N65O75S6",
        "C1000H1600N280O300S10", "[13C]2C4H12O6", "CHNOPSClBrIFNaKMgCaFeZnCuSe", "C3H3"}) {
    MassComposition shares = compositionOf(formula);
    ASSERT_TRUE(shares.ok) << formula;
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
    EXPECT_NEAR(mass, formulaMasses(atomsOf(formula)).average, 1e-9) << formula;
  }
}

// Each isotope on its own, at its exact mass (the rounding is checked on the tool's output).
TEST_F(Composition, IsotopesApartAndUnknownElements) {
  MassComposition labelled = compositionOf("[13C]C");
  ASSERT_EQ(labelled.elements.size(), 2u);
  EXPECT_EQ(labelled.elements[0].label, "13C");
  EXPECT_NEAR(labelled.elements[0].mass, 13.00335483507, 1e-9);
  EXPECT_FALSE(massComposition({{"Xx", 0, 1}}).ok);
}

using Ion = FormulaText;

double monoisotopic(const char *formula) { return formulaMasses(atomsOf(formula)).monoisotopic; }

// By hand from the NIST masses H 1.00782503223, C 12, O 15.99491461957, Na 22.9897692820 and
// me 0.000548579909: glucose M = 180.06338810418, H2O 18.01056468403.
TEST_F(Ion, MzOfGlucoseAsComputedByHand) {
  double glucose = monoisotopic("C6H12O6");
  struct Case {
    const char *adduct;
    double mz;
  } cases[] = {
      {"[M+H]+", 181.070664556501},      // M + H - me
      {"[M+Na]+", 203.052608806271},     // M + Na - me
      {"[M-H]-", 179.056111651859},      // M - H + me
      {"[M+2H]2+", 91.038970504411},     // (M + 2H - 2me) / 2
      {"[2M+Na]+", 383.115996910451},    // 2M + Na - me
      {"[M-H2O+H]+", 163.060099872471},  // M - H2O + H - me
  };
  for (const Case &c : cases) {
    Adduct adduct = readAdduct(c.adduct);
    ASSERT_TRUE(adduct.ok()) << c.adduct << ": " << adduct.error;
    EXPECT_NEAR(adductMz(glucose, adduct), c.mz, 1e-6) << c.adduct;
  }
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
      {"[M+K]+", 1, 1, {{"K", 0, 1}}, {}},
      {"[M+Cl]-", 1, -1, {{"Cl", 0, 1}}, {}},
      {"[M]+", 1, 1, {}, {}},
      {"[3M-2H]2-", 3, -2, {}, {{"H", 0, 2}}},
      {"[M-H2O+H]+", 1, 1, {{"H", 0, 1}}, {{"H", 0, 2}, {"O", 0, 1}}},
      {"[M+2(CH3)2CO]+", 1, 1, {{"C", 0, 6}, {"H", 0, 12}, {"O", 0, 2}}, {}},
      {"[M+[13C]H3]12+", 1, 12, {{"C", 13, 1}, {"H", 0, 3}}, {}},
  };
  for (const Case &c : cases) {
    Adduct adduct = readAdduct(c.text);
    ASSERT_TRUE(adduct.ok()) << c.text << ": " << adduct.error;
    EXPECT_EQ(adduct.molecules, c.molecules) << c.text;
    EXPECT_EQ(adduct.charge, c.charge) << c.text;
    EXPECT_EQ(adduct.added, c.added) << c.text;
    EXPECT_EQ(adduct.removed, c.removed) << c.text;
  }
}

TEST_F(Ion, NamesEachErrorWithItsPosition) {
  const ErrorCase cases[] = {
      {"", "expected '['", 0},
      {"[X+H]+", "expected 'M'", 1},
      {"[0M+H]+", "count 0", 1},
      {"[M+0H]+", "count 0", 3},
      {"[M+2H1000000000]+", "count too large", 3},
      {"[M+H", "unclosed '['", 0},
      {"[MH]+", "expected '+', '-' or ']'", 2},
      {"[M+]+", "expected a formula", 3},
      // The formula's own errors, at their place in the adduct text.
      {"[M+Xx]+", "unknown element 'Xx'", 3},
      {"[M-H2O+H2o]+", "unexpected character 'o'", 9},
      {"[M+H]", "expected the charge sign '+' or '-'", 5},
      {"[M+H]0+", "charge 0", 5},
      {"[M+H]1000000001+", "charge too large", 5},
      {"[M+H]++", "unexpected text after the charge", 6},
  };
  for (const ErrorCase &c : cases) {
    Adduct adduct = readAdduct(c.text);
    expectErrorAt(adduct, c);
    EXPECT_TRUE(adduct.added.empty() && adduct.removed.empty()) << c.text;
  }
  EXPECT_EQ(readAdduct(nullptr).error, "expected '[' at position 0");
}

}  // namespace
