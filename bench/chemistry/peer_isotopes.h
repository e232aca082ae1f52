// SPDX-License-Identifier: MIT
// IsoSpec (Debian's libisospec++-dev), the benchmark peer of fskit's
// isotope patterns, given the isotope masses and abundances of fskit's
// element table so that both compute the same distribution. A benchmark
// peer only: the library never links it.
#pragma once

#include <cstddef>
#include <vector>

#include "bench/chemistry/pattern_cases.h"
#include "chemistry/formula_text_internal.h"

namespace fskit::bench {

// A molecule as IsoSpec's constructor takes it: per element the number of
// its isotopes and of its atoms; the isotopes' masses and probabilities, all
// elements' one after the other.
struct PeerMolecule {
  std::vector<int> isotopeNumbers, atomCounts;
  std::vector<double> masses, probabilities;
};

// Reads the present element table through fskit's C interface: each
// element's isotopes with an abundance, divided by their sum (as fskit
// normalises them); an element without natural abundances as its reference
// isotope; a labelled atom as its isotope. Empty when an atom is not in the
// table.
PeerMolecule peerMolecule(const std::vector<chemistry::FormulaAtom> &atoms);

// Each computes one pattern from the molecule and returns its number of
// peaks, filling `summary` when it is not null (outside the timed loops).
// Peaks of at least `relative` times the largest, in IsoSpec's arrays:
size_t isoSpecThreshold(const PeerMolecule &molecule, double relative, PeakSummary *summary);
// The same peaks collected from IsoSpec's generator into vectors, sorted by
// mass afterwards when `byMass`:
size_t isoSpecThresholdGenerator(const PeerMolecule &molecule, double relative, bool byMass,
                                 PeakSummary *summary);
// The same as isoSpecThreshold, then sorted by IsoSpec:
size_t isoSpecThresholdByMass(const PeerMolecule &molecule, double relative,
                              PeakSummary *summary);
// The smallest set of peaks whose probabilities add up to at least `coverage`:
size_t isoSpecTotalProbability(const PeerMolecule &molecule, double coverage,
                               PeakSummary *summary);

}  // namespace fskit::bench
