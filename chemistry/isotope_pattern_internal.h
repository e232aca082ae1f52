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
//   kResolution  isotopologues merged at a resolving power R: each peak is
//                founded by its most probable isotopologue, every other one
//                joins the nearest peak founded by a more probable one within
//                m/R of it (m its own mass) or founds one; the peak sits at
//                its members' weighted mean mass. The fine structure is taken
//                as far as a million isotopologues reach (all but 1e-9 of the
//                molecules when they do); what it leaves out of a nominal mass
//                joins as one isotopologue at the mean mass of the rest;
//   kFine        every isotopologue its own peak.
// Fractions are exact to about 1e-12 (nominal distributions drop entries
// below 1e-13 of their largest). Abundances are normalised to add up to 1
// per element. An element the table
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
// each). Errors: an invalid request, an atom not in the table, more than
// maxPeaks peaks, or an element whose nominal distribution would take too
// long ("too many Sn atoms for a nominal pattern", e.g. Sn10000). Throws
// nothing but std::bad_alloc. Safe from any number of threads at once.
IsotopePattern isotopePattern(const std::vector<FormulaAtom> &atoms,
                              const PatternRequest &request);

// The same into `result`, whose columns' memory is reused: for callers that
// compute many patterns in a row.
void isotopePattern(const std::vector<FormulaAtom> &atoms, const PatternRequest &request,
                    IsotopePattern &result);

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
