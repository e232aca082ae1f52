// SPDX-License-Identifier: MIT
#include "bench/chemistry/peer_isotopes.h"

#include <IsoSpec++/fixedEnvelopes.h>
#include <IsoSpec++/isoSpec++.h>
#include <benchmark/benchmark.h>
#include <fskit/chemistry.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

namespace fskit::bench {
namespace {

struct Isotopes {
  std::vector<double> masses, probabilities;
};

// The isotopes of the element record `element` that have an abundance, as
// probabilities; its reference isotope alone when none has one.
Isotopes naturalIsotopes(int32_t element) {
  FsElementRecord record{}, isotope{};
  fsGetElementInfo(element, &record);
  Isotopes found;
  double sum = 0.0;
  for (int32_t i = element + 1; i < fsElementTableCount() && fsGetElementInfo(i, &isotope) == 1 &&
                                isotope.isotopeShift != 0;
       ++i) {
    if (isotope.abundance <= 0.0) continue;
    found.masses.push_back(isotope.monoMass);
    found.probabilities.push_back(isotope.abundance);
    sum += isotope.abundance;
  }
  if (found.masses.empty()) return {{record.monoMass}, {1.0}};
  for (double &p : found.probabilities) p /= sum;
  return found;
}

// One labelled isotope, e.g. 13C, with probability 1; nothing when the
// table lacks it.
Isotopes labelledIsotope(const chemistry::FormulaAtom &atom) {
  FsElementRecord isotope{};
  std::string label = std::to_string(atom.massNumber) + atom.symbol;
  if (fsGetElementInfo(fsFindElemInTbl(label.c_str()), &isotope) != 1) return {};
  return {{isotope.monoMass}, {1.0}};
}

void sortByMass(std::vector<double> &masses, std::vector<double> &probabilities) {
  std::vector<std::pair<double, double>> peaks(masses.size());
  for (size_t i = 0; i < peaks.size(); ++i) peaks[i] = {masses[i], probabilities[i]};
  std::sort(peaks.begin(), peaks.end());
  for (size_t i = 0; i < peaks.size(); ++i) std::tie(masses[i], probabilities[i]) = peaks[i];
}

IsoSpec::Iso isoOf(const PeerMolecule &m) {
  return IsoSpec::Iso(int(m.atomCounts.size()), m.isotopeNumbers.data(), m.atomCounts.data(),
                      m.masses.data(), m.probabilities.data());
}

size_t report(const double *masses, const double *probabilities, size_t count,
              PeakSummary *summary) {
  benchmark::DoNotOptimize(masses);
  benchmark::DoNotOptimize(probabilities);
  if (summary != nullptr) *summary = summarise(masses, probabilities, count);
  return count;
}

}  // namespace

PeerMolecule peerMolecule(const std::vector<chemistry::FormulaAtom> &atoms) {
  PeerMolecule molecule;
  for (const chemistry::FormulaAtom &atom : atoms) {
    Isotopes isotopes;
    if (atom.massNumber != 0) {
      isotopes = labelledIsotope(atom);
    } else if (int32_t element = fsFindElemInTbl(atom.symbol.c_str()); element >= 0) {
      isotopes = naturalIsotopes(element);
    }
    if (isotopes.masses.empty()) return {};
    molecule.isotopeNumbers.push_back(int(isotopes.masses.size()));
    molecule.atomCounts.push_back(int(atom.count));
    molecule.masses.insert(molecule.masses.end(), isotopes.masses.begin(), isotopes.masses.end());
    molecule.probabilities.insert(molecule.probabilities.end(), isotopes.probabilities.begin(),
                                  isotopes.probabilities.end());
  }
  return molecule;
}

size_t isoSpecThreshold(const PeerMolecule &molecule, double relative, PeakSummary *summary) {
  auto envelope = IsoSpec::FixedEnvelope::FromThreshold(isoOf(molecule), relative, false);
  return report(envelope.masses(), envelope.probs(), envelope.confs_no(), summary);
}

// Sorted afterwards by mass when `byMass`: masses and probabilities as
// pairs, then std::sort.
size_t isoSpecThresholdGenerator(const PeerMolecule &molecule, double relative, bool byMass,
                                 PeakSummary *summary) {
  IsoSpec::IsoThresholdGenerator generator(isoOf(molecule), relative, false);
  std::vector<double> masses, probabilities;
  while (generator.advanceToNextConfiguration()) {
    masses.push_back(generator.mass());
    probabilities.push_back(generator.prob());
  }
  if (byMass) sortByMass(masses, probabilities);
  return report(masses.data(), probabilities.data(), probabilities.size(), summary);
}

size_t isoSpecThresholdByMass(const PeerMolecule &molecule, double relative,
                              PeakSummary *summary) {
  auto envelope = IsoSpec::FixedEnvelope::FromThreshold(isoOf(molecule), relative, false);
  envelope.sort_by_mass();
  return report(envelope.masses(), envelope.probs(), envelope.confs_no(), summary);
}

size_t isoSpecTotalProbability(const PeerMolecule &molecule, double coverage,
                               PeakSummary *summary) {
  // optimize: trimmed to the smallest set, as fskit's coverage asks.
  auto envelope = IsoSpec::FixedEnvelope::FromTotalProb(isoOf(molecule), coverage, true);
  return report(envelope.masses(), envelope.probs(), envelope.confs_no(), summary);
}

}  // namespace fskit::bench
