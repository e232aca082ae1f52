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
// published weight is rounded more coarsely than the test's 0.01.
TEST(ShippedTable, ReproducesPublishedCompoundMasses) {
  ASSERT_EQ(fsLoadElemTable(kShippedTable.c_str()), 1);
  struct Compound {
    const char *formula;
    double mono, average;
  } compounds[] = {
      {"H2O", 18.010565, 18.015},          {"CH4", 16.031300, 16.043},
      {"NH3", 17.026549, 17.031},          {"CO2", 43.989829, 44.009},
      {"C2H6O", 46.041865, 46.07},         {"C6H12O6", 180.063388, 180.16},
      {"C8H10N4O2", 194.080376, 194.19},   {"C6H6", 78.046950, 78.11},
      {"C3H6O", 58.041865, 58.08},         {"C2H4O2", 60.021129, 60.05},
      {"CH4N2O", 60.032363, 60.056},       {"C2H5NO2", 75.032028, 75.07},
      {"C3H7NO2", 89.047678, 89.09},       {"CH4O", 32.026215, 32.042},
      {"CH2O2", 46.005479, 46.025},        {"C12H22O11", 342.116212, 342.30},
      {"C27H46O", 386.354866, 0},          {"C9H11NO2", 165.078979, 165.19},
      {"C11H12N2O2", 204.089878, 204.22},  {"C9H8O4", 180.042259, 180.16},
      {"C8H9NO2", 151.063329, 151.16},     {"C13H18O2", 206.130680, 206.28},
      {"C10H14N2", 162.115698, 162.23},    {"C3H7NO2S", 121.019749, 121.16},
      {"C5H11NO2S", 149.051049, 149.21},   {"NaCl", 57.958622, 58.44},
      {"CHCl3", 117.914383, 119.37},       {"CH2Cl2", 83.953355, 84.93},
      {"C6H5Br", 155.957462, 157.01},      {"C6H5F", 96.037528, 96.10},
      {"CH3I", 141.927947, 141.939},       {"H3PO4", 97.976896, 97.994},
      {"H2SO4", 97.967380, 98.08},         {"C5H5N5", 135.054495, 135.13},
      {"C5H5N5O", 151.049410, 151.13},     {"C4H5N3O", 111.043262, 111.10},
      {"C5H6N2O2", 126.042928, 126.11},    {"C4H4N2O2", 112.027277, 112.09},
      {"C6H14N2O2", 146.105528, 146.19},   {"C6H14N4O2", 174.111676, 174.20},
      {"C5H9NO4", 147.053158, 147.13},     {"C3H7NO3", 105.042593, 105.09},
      {"C9H11NO3", 181.073893, 181.19},    {"C6H9N3O2", 155.069477, 155.15},
      {"C5H9NO2", 115.063329, 115.13},     {"C6H13NO2", 131.094629, 131.17},
      {"C5H11NO2", 117.078979, 117.15},    {"C19H28O2", 288.208930, 0},
      {"C17H19NO3", 285.136493, 285.34},   {"C6H8O7", 192.027003, 192.12},
      {"C3H6O3", 90.031694, 90.08},        {"C8H11NO2", 153.078979, 153.18},
      {"C10H12N2O", 176.094963, 176.21},   {"C10H17N3O6S", 307.083806, 307.33},
      {"C2H6OS", 78.013936, 0},            {"KCl", 73.932560, 74.55},
      {"C4H12Si", 88.070827, 88.22},
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
