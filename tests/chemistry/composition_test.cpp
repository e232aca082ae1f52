// SPDX-License-Identifier: MIT
// Composition by mass: each element's mass, and rounded percents that add up
// to exactly 100.
#include "chemistry/composition_internal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "tests/chemistry/formula_text_support.h"

using namespace fskit::chemistry;

namespace {

using Composition = fskit::chemistry::test::ShippedTableTest;
using fskit::chemistry::test::atomsOf;

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

// Each isotope on its own, at its exact mass; text that does not read gives
// the reader's error. (The rounding is checked on the tool's output.)
TEST_F(Composition, IsotopesApartAndUnreadableText) {
  MassComposition labelled = compositionOf("[13C]C");
  ASSERT_EQ(labelled.elements.size(), 2u);
  EXPECT_EQ(labelled.elements[0].label, "13C");
  EXPECT_NEAR(labelled.elements[0].mass, 13.00335483507, 1e-9);
  EXPECT_FALSE(massComposition({{"Xx", 0, 1}}).ok);
  MassComposition unread = readMassComposition("C6H1Xx2");
  EXPECT_FALSE(unread.ok);
  EXPECT_EQ(unread.error, "unknown element 'Xx' at position 4");
}

}  // namespace
