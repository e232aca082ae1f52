// SPDX-License-Identifier: MIT
// The elemental composition of a formula by mass (not exported).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "chemistry/formula_text_internal.h"

namespace fskit::chemistry {

// Percents are given in these steps: 4 decimals.
inline constexpr int64_t kPercentSteps = 1'000'000;  // 100 % in steps of 0.0001 %

struct ElementShare {
  std::string label;     // the symbol, or the isotope's label ("13C")
  int64_t count = 0;
  double mass = 0.0;     // average mass of these atoms (a labelled isotope's exact mass)
  double percent = 0.0;  // the exact mass fraction in percent
  // The percent rounded to steps of 0.0001 %, the steps of all elements
  // summing to kPercentSteps (see massComposition).
  int64_t percentSteps = 0;
};

struct MassComposition {
  std::vector<ElementShare> elements;  // in the order of `atoms`
  bool ok = false;                     // false: an atom the present table lacks
  // From readMassComposition only: why the text did not read, else empty.
  std::string error;
};

// Each atom's share of the average mass of `atoms`. The rounded percents add
// up to exactly 100: every exact percent is first cut down to a whole step
// of 0.0001 %, then the steps still missing go one each to the elements
// with the largest cut-off remainders (the earlier element on a tie), so
// no rounded percent is 0.0001 or more away from the exact one.
MassComposition massComposition(const std::vector<FormulaAtom> &atoms);

// The composition of formula text read with readFormulaText (null reads as
// empty); not ok with readFormulaText's error (e.g. "unknown element 'Xx' at
// position 4") when the text does not read.
MassComposition readMassComposition(const char *formula);

}  // namespace fskit::chemistry
