// SPDX-License-Identifier: MIT
// Isotope patterns of molecules and ions from the element table's isotope
// masses and abundances (not exported; used by the tool and the Python
// package).
//
// A molecule's isotopologues are the ways its atoms can be made of their
// elements' isotopes; each has an exact mass and a probability (the product
// of the elements' multinomial probabilities). A pattern groups them into
// peaks:
//   kNominal     one peak per total mass number, at the probability-weighted
//                mean mass of its isotopologues;
//   kResolution  isotopologues merged at a resolving power R: sorted by mass,
//                a peak goes on while the next isotopologue lies within m/R
//                of the one before it (m: that isotopologue's mass); the peak
//                sits at the group's weighted mean mass;
//   kFine        every isotopologue its own peak.
// Abundances are normalised to add up to 1 per element. An element the table
// gives no natural abundance (e.g. Tc) counts as its reference isotope, as
// the monoisotopic mass does. A labelled atom ("[13C]") is that isotope.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "chemistry/formula_text_internal.h"
#include "chemistry/ion_internal.h"

namespace fskit::chemistry {

enum class PeakGrouping { kNominal, kResolution, kFine };

struct PatternRequest {
  PeakGrouping grouping = PeakGrouping::kNominal;
  double resolution = 0.0;   // kResolution: the resolving power R, above 0
  // Peaks below this percent of the largest peak are left out (0: none).
  double minRelative = 0.01;
  // Above 0 (at most 1): instead of minRelative, the smallest set of peaks
  // whose fractions add up to at least this.
  double coverage = 0.0;
  // False: kFine peaks come in no particular order (for callers that sort
  // or bin them themselves); the other groupings are always by mass.
  bool byMass = true;
  // A pattern that would hold more peaks is refused (at 16 bytes a peak).
  size_t maxPeaks = 20'000'000;
};

struct IsotopePattern {
  std::vector<double> mass;      // Da; the m/z after toMz
  std::vector<double> fraction;  // the share of all molecules in each peak
  double largest = 0.0;          // the largest fraction (relative = 100 * f / largest)
  // Empty on success; else why, e.g. "resolution must be above 0".
  std::string error;
  bool ok() const { return error.empty(); }
};

// The pattern of the molecule `atoms` (counts at or below kMaxFormulaCount
// each). Throws nothing but std::bad_alloc.
IsotopePattern isotopePattern(const std::vector<FormulaAtom> &atoms,
                              const PatternRequest &request);

// The atoms of the ion `adduct` makes of the molecule `molecule`: n times
// the molecule, plus what it adds, minus what it removes. Empty, with
// `error` set (e.g. "cannot remove 2 O from C6H12O6... "), when the removed
// atoms are not all in the molecule.
struct IonAtoms {
  std::vector<FormulaAtom> atoms;
  std::string error;
  bool ok() const { return error.empty(); }
};
IonAtoms ionAtoms(const std::vector<FormulaAtom> &molecule, const Adduct &adduct);

// Turns the masses of `pattern` into m/z for a signed charge (not 0):
// (m - z * me) / |z|.
void toMz(IsotopePattern &pattern, int32_t charge);

}  // namespace fskit::chemistry
