// SPDX-License-Identifier: MIT
// Adduct text and the m/z of ions, against values computed by hand from the
// shipped (NIST) masses.
#include "chemistry/ion_internal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "tests/chemistry/formula_text_support.h"

using namespace fskit::chemistry;

namespace {

using Ion = fskit::chemistry::test::ShippedTableTest;
using fskit::chemistry::test::atomsOf;

double monoisotopic(const char *formula) { return formulaMasses(atomsOf(formula)).monoisotopic; }

// By hand from the NIST masses H 1.00782503223, C 12, N 14.00307400443,
// O 15.99491461957, Na 22.9897692820 and me 0.000548579909:
//   glucose  C6H12O6:   M = 72 + 12.09390038676 + 95.96948771742 = 180.06338810418
//   caffeine C8H10N4O2: M = 96 + 10.0782503223 + 56.01229601772 + 31.98982923914
//                         = 194.08037557916
//   H2O = 2.01565006446 + 15.99491461957 = 18.01056468403
// e.g. glucose [M+2H]2+ = (180.06338810418 + 2.01565006446 - 0.001097159818) / 2.
TEST_F(Ion, MzOfGlucoseAndCaffeineAsComputedByHand) {
  double glucose = monoisotopic("C6H12O6"), caffeine = monoisotopic("C8H10N4O2");
  struct Case {
    const char *adduct;
    double glucose, caffeine;
  } cases[] = {
      {"[M+H]+", 181.070664556501, 195.087652031481},      // M + H - me
      {"[M+Na]+", 203.052608806271, 217.069596281251},     // M + Na - me
      {"[M-H]-", 179.056111651859, 193.073099126839},      // M - H + me
      {"[M+2H]2+", 91.038970504411, 98.047464241901},      // (M + 2H - 2me) / 2
      {"[2M+Na]+", 383.115996910451, 411.149971860411},    // 2M + Na - me
      {"[M-H2O+H]+", 163.060099872471, 177.077087347451},  // M - H2O + H - me
  };
  for (const Case &c : cases) {
    Adduct adduct = readAdduct(c.adduct);
    ASSERT_TRUE(adduct.ok()) << c.adduct << ": " << adduct.error;
    EXPECT_NEAR(adductMz(glucose, adduct), c.glucose, 1e-6) << c.adduct;
    EXPECT_NEAR(adductMz(caffeine, adduct), c.caffeine, 1e-6) << c.adduct;
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
  struct Case {
    const char *text, *error;
    size_t position;
  } cases[] = {
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
  for (const Case &c : cases) {
    Adduct adduct = readAdduct(c.text);
    EXPECT_EQ(adduct.error, std::string(c.error) + " at position " + std::to_string(c.position))
        << c.text;
    EXPECT_EQ(adduct.errorPosition, c.position) << c.text;
    EXPECT_TRUE(adduct.added.empty() && adduct.removed.empty()) << c.text;
  }
  EXPECT_EQ(readAdduct(nullptr).error, "expected '[' at position 0");
}

}  // namespace
