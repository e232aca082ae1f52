// SPDX-License-Identifier: MIT
// Formula text, adduct text and isotope patterns on any input (the formula, then optionally a
// line feed and the adduct): errors lie inside the text, and every grouping gives sane peaks.
#include <fskit/chemistry.h>

#include <numeric>

#include "chemistry/isotope_pattern_internal.h"
#include "fuzz/support/fuzz_support.h"

using namespace fskit::chemistry;

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  FUZZ_CHECK(fsLoadElemTable(FSKIT_SOURCE_DIR "/data/kw_elements.tbl") == 1);
  return 0;
}

FUZZ_TARGET(input) {
  size_t newline = input.find('\n');
  Text formula(input.substr(0, newline));
  FormulaComposition read = readFormulaText(formula.get());
  if (!read.ok()) {
    FUZZ_CHECK(read.atoms.empty() && read.errorPosition <= formula.str().size());
    return;
  }
  for (const FormulaAtom &atom : read.atoms) FUZZ_CHECK(atom.count > 0 && atom.count <= kMaxFormulaCount);
  std::vector<FormulaAtom> atoms = read.atoms;
  if (newline != std::string_view::npos) {
    Text adductText(input.substr(newline + 1));
    Adduct adduct = readAdduct(adductText.get());
    if (!adduct.ok()) {
      FUZZ_CHECK(adduct.errorPosition <= adductText.str().size());
      return;
    }
    IonAtoms ion = ionAtoms(atoms, adduct);
    if (!ion.ok()) return;
    atoms = ion.atoms;
  }
  int64_t total = std::accumulate(atoms.begin(), atoms.end(), int64_t{0},
                                  [](int64_t sum, const FormulaAtom &a) { return sum + a.count; });
  if (atoms.empty() || total > 400) return;  // big counts make patterns slow, not wrong
  const PatternRequest requests[] = {{PeakGrouping::kNominal, 0, 0.01, 0, true, 100'000},
                                     {PeakGrouping::kFine, 0, 0.1, 0, true, 100'000},
                                     {PeakGrouping::kResolution, 20000, 0.1, 0, true, 100'000},
                                     {PeakGrouping::kResolution, 20000, 0.1, 0.99, true, 100'000}};
  for (const PatternRequest &request : requests) {
    IsotopePattern pattern = isotopePattern(atoms, request);
    if (!pattern.ok()) continue;
    FUZZ_CHECK(!pattern.mass.empty() && pattern.mass.size() == pattern.fraction.size());
    FUZZ_CHECK(std::is_sorted(pattern.mass.begin(), pattern.mass.end()));
    double sum = 0.0, largest = 0.0;
    for (double f : pattern.fraction) {
      FUZZ_CHECK(f > 0.0 && f <= 1.0 + 1e-12);
      sum += f;
      largest = std::max(largest, f);
    }
    FUZZ_CHECK(sum <= 1.0 + 1e-9);
    FUZZ_CHECK(largest == pattern.largest);
    if (request.coverage > 0.0) FUZZ_CHECK(sum >= request.coverage - 1e-9);
  }
}
