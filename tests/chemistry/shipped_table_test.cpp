// SPDX-License-Identifier: MIT
// The shipped element file: complete, and reproducing published masses.
#include <fskit/chemistry.h>
#include <gtest/gtest.h>

#include <cctype>
#include <string>

namespace {

const std::string kShippedTable = FSKIT_SOURCE_DIR "/data/kw_elements.tbl";

}  // namespace

TEST(ShippedTable, HoldsEveryElementWithItsReferenceIsotope) {
  ASSERT_EQ(fsLoadElemTable(kShippedTable.c_str()), 1);
  int32_t count = fsElementTableCount();
  ASSERT_GT(count, 118);
  ASSERT_LT(count, 500);
  bool seen[119] = {};
  for (int32_t i = 0; i < count; ++i) {
    FsElementRecord element;
    ASSERT_EQ(fsGetElementInfo(i, &element), 1);
    if (element.isotopeShift != 0) continue;
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
}

// Monoisotopic masses and molecular weights of well-known compounds as PubChem
// lists them (https://pubchem.ncbi.nlm.nih.gov, "Monoisotopic Mass" and
// "Molecular Weight"), rounded to 6 and 2 or 3 decimals; 0 where the
// published weight is rounded more coarsely than the test's 0.01. Every
// element used is in at least one compound, and some counts run high.
TEST(ShippedTable, ReproducesPublishedCompoundMasses) {
  ASSERT_EQ(fsLoadElemTable(kShippedTable.c_str()), 1);
  struct Compound {
    const char *formula;
    double mono, average;
  } compounds[] = {
      {"H2O", 18.010565, 18.015},          {"NH3", 17.026549, 17.031},
      {"CO2", 43.989829, 44.009},          {"C6H12O6", 180.063388, 180.16},
      {"C8H10N4O2", 194.080376, 194.19},   {"C12H22O11", 342.116212, 342.30},
      {"C27H46O", 386.354866, 0},          {"C3H7NO2S", 121.019749, 121.16},
      {"C10H17N3O6S", 307.083806, 307.33}, {"NaCl", 57.958622, 58.44},
      {"CHCl3", 117.914383, 119.37},       {"C6H5Br", 155.957462, 157.01},
      {"C6H5F", 96.037528, 96.10},         {"CH3I", 141.927947, 141.939},
      {"H3PO4", 97.976896, 97.994},        {"H2SO4", 97.967380, 98.08},
      {"KCl", 73.932560, 74.55},           {"C4H12Si", 88.070827, 88.22},
  };
  for (const Compound &compound : compounds) {
    SCOPED_TRACE(compound.formula);
    char text[64];
    double mono = 0, average = 0;
    ASSERT_GT(fsTblParseMF(compound.formula, 0, 0, text, nullptr, &mono, &average, nullptr, 0,
                           nullptr, nullptr, nullptr, nullptr),
              0);
    if (compound.formula[0] == 'C' && !std::islower(compound.formula[1])) {
      EXPECT_EQ(std::string(text), compound.formula);  // the file is in Hill order
    }
    EXPECT_NEAR(mono, compound.mono, 1e-6);
    if (compound.average != 0) { EXPECT_NEAR(average, compound.average, 0.01); }
  }
}

TEST(ShippedTable, MoreThanAHundredDistinctSymbolsWhenTheCallerMakesRoom) {
  ASSERT_EQ(fsLoadElemTable(kShippedTable.c_str()), 1);
  std::string formula;  // all 118 element symbols
  for (int32_t i = 0; i < fsElementTableCount(); ++i) {
    FsElementRecord record;
    fsGetElementInfo(i, &record);
    if (record.isotopeShift == 0) formula += record.symbol;
  }
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
