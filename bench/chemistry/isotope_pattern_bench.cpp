// SPDX-License-Identifier: MIT
// fskit's isotope patterns against IsoSpec (libisospec++-dev), where it is
// installed, in the same run: insulin and a 20 kDa protein down to 1e-4 of
// the largest peak, insulin to 99.9 % of the total probability, 1000 small
// formulas, and fskit's nominal patterns against IsoSpec's fine structure.
// Both sides start from the parsed formula (parsing is not timed) and use
// the isotopes of fskit's element table. Before the runs a check computes
// every pattern once on both sides and says loudly where the numbers of
// peaks or the totals differ. The ratios at the end are fskit / IsoSpec in
// CPU time (below 1: fskit is faster), against the faster of IsoSpec's ways
// to compute the same peaks. See README.md.
#include <benchmark/benchmark.h>
#include <fskit/chemistry.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/chemistry/pattern_cases.h"
#include "bench/common/ratios.h"
#include "chemistry/isotope_pattern_internal.h"
#if FSKIT_BENCH_ISOSPEC
#include "bench/chemistry/peer_isotopes.h"
#endif

namespace {

using fskit::bench::PeakSummary;
namespace chem = fskit::chemistry;

constexpr double kRelative = 1e-4;    // of the largest peak
constexpr double kCoverage = 0.999;   // of the total probability
constexpr size_t kSmallCount = 1000;  // small formulas
constexpr double kTolerance = 1e-9;   // of the totals and the largest peaks

struct Molecule {
  std::string formula;
  std::vector<chem::FormulaAtom> atoms;
#if FSKIT_BENCH_ISOSPEC
  fskit::bench::PeerMolecule peer;
#endif
};

// One pattern of a molecule: its number of peaks; `summary` when not null.
using Compute = std::function<size_t(const Molecule &, PeakSummary *)>;

struct Row {
  std::string name;  // after the group's name and '/'
  Compute compute;
  bool byMass = false;  // its peaks must come by mass
};

// Rows that compute the same peaks of the same molecules; the fskit rows'
// ratios are taken against the fastest peer row of each group in `against`.
struct Group {
  std::string name;
  const std::vector<Molecule> *molecules;
  std::vector<Row> fskit, peers;
  std::vector<std::string> against;
};

// `reuse`: into one pattern whose memory each call reuses (the interface's
// way for many patterns in a row); else a new pattern each time, as IsoSpec
// makes one (moved into the kept one, which frees the one before).
Compute fskitPattern(chem::PeakGrouping grouping, bool byMass, double coverage,
                     bool reuse = false) {
  chem::PatternRequest request;
  request.grouping = grouping;
  request.minRelative = 100.0 * kRelative;  // in percent
  request.coverage = coverage;
  request.byMass = byMass;
  auto kept = std::make_shared<chem::IsotopePattern>();
  return [request, reuse, kept](const Molecule &molecule, PeakSummary *summary) {
    chem::IsotopePattern &pattern = *kept;
    if (reuse)
      chem::isotopePattern(molecule.atoms, request, pattern);
    else
      pattern = chem::isotopePattern(molecule.atoms, request);
    benchmark::DoNotOptimize(pattern.mass.data());
    if (summary != nullptr) {
      *summary = fskit::bench::summarise(pattern.mass.data(), pattern.fraction.data(),
                                         pattern.fraction.size());
      if (!pattern.ok()) std::printf("!!! fskit failed on %s: %s\n", molecule.formula.c_str(),
                                     pattern.error.c_str());
    }
    return pattern.fraction.size();
  };
}

std::vector<Molecule> molecules(const std::vector<std::string> &formulas) {
  std::vector<Molecule> parsed;
  for (const std::string &formula : formulas) {
    Molecule molecule;
    molecule.formula = formula;
    chem::FormulaComposition read = chem::readFormulaText(formula.c_str());
    if (!read.ok()) std::printf("!!! cannot read %s: %s\n", formula.c_str(), read.error.c_str());
    molecule.atoms = read.atoms;
#if FSKIT_BENCH_ISOSPEC
    molecule.peer = fskit::bench::peerMolecule(molecule.atoms);
#endif
    parsed.push_back(std::move(molecule));
  }
  return parsed;
}

#if FSKIT_BENCH_ISOSPEC
// IsoSpec's ways to the same peaks (see peer_isotopes.h).
namespace bench = fskit::bench;
size_t envelope(const Molecule &m, PeakSummary *s) {
  return bench::isoSpecThreshold(m.peer, kRelative, s);
}
size_t generator(const Molecule &m, PeakSummary *s) {
  return bench::isoSpecThresholdGenerator(m.peer, kRelative, false, s);
}
size_t envelopeByMass(const Molecule &m, PeakSummary *s) {
  return bench::isoSpecThresholdByMass(m.peer, kRelative, s);
}
size_t generatorByMass(const Molecule &m, PeakSummary *s) {
  return bench::isoSpecThresholdGenerator(m.peer, kRelative, true, s);
}
size_t totalProbability(const Molecule &m, PeakSummary *s) {
  return bench::isoSpecTotalProbability(m.peer, kCoverage, s);
}
#endif

std::vector<Group> groups(const std::vector<Molecule> &insulin,
                          const std::vector<Molecule> &protein,
                          const std::vector<Molecule> &small) {
  using G = chem::PeakGrouping;
  auto fine = [](bool byMass) { return fskitPattern(G::kFine, byMass, 0.0); };
  std::vector<Group> all = {
      {"insulin_fine", &insulin, {{"fskit", fine(false)}}, {}, {"insulin_fine"}},
      {"insulin_fine_by_mass", &insulin, {{"fskit", fine(true), true}}, {},
       {"insulin_fine_by_mass", "insulin_fine"}},
      {"insulin_999", &insulin, {{"fskit", fskitPattern(G::kFine, false, kCoverage)}}, {},
       {"insulin_999"}},
      {"protein20k_fine", &protein, {{"fskit", fine(false)}}, {}, {"protein20k_fine"}},
      {"protein20k_fine_by_mass", &protein, {{"fskit", fine(true), true}}, {},
       {"protein20k_fine_by_mass", "protein20k_fine"}},
      {"small_fine", &small,
       {{"fskit", fine(false)}, {"fskit_reused", fskitPattern(G::kFine, false, 0.0, true)}}, {},
       {"small_fine"}},
      {"insulin_nominal", &insulin, {{"fskit", fskitPattern(G::kNominal, true, 0.0), true}}, {},
       {"insulin_fine"}},
      {"protein20k_nominal", &protein,
       {{"fskit", fskitPattern(G::kNominal, true, 0.0), true}}, {}, {"protein20k_fine"}},
  };
#if FSKIT_BENCH_ISOSPEC
  const std::vector<Row> threshold = {{"isospec_envelope", envelope},
                                      {"isospec_generator", generator}};
  const std::vector<Row> byMass = {{"isospec_envelope", envelopeByMass, true},
                                   {"isospec_generator", generatorByMass, true}};
  const std::vector<Row> coverage = {{"isospec_envelope", totalProbability}};
  for (Group &group : all) {
    if (group.name.ends_with("_fine")) group.peers = threshold;
    if (group.name.ends_with("_by_mass")) group.peers = byMass;
    if (group.name == "insulin_999") group.peers = coverage;
  }
#endif
  return all;
}

// ---- The check, outside the timed loops ----

bool agree(const PeakSummary &a, const PeakSummary &b) {
  return a.peaks == b.peaks && std::fabs(a.total - b.total) <= kTolerance &&
         std::fabs(a.largest - b.largest) <= kTolerance;
}

void printSummary(const char *side, const std::string &row, const PeakSummary &s) {
  std::printf("    %-5s %-20s %8zu peaks  total %.12f  largest %.12f%s\n", side, row.c_str(),
              s.peaks, s.total, s.largest, s.byMass ? "  by mass" : "");
}

// Sums over the molecules of a group: peaks and totals added, the largest
// kept, by mass while all are.
void accumulate(PeakSummary &sum, const PeakSummary &one) {
  sum.peaks += one.peaks;
  sum.total += one.total;
  sum.largest = std::max(sum.largest, one.largest);
  sum.byMass = sum.byMass && one.byMass;
}

// One fskit row against one peer row (or none), molecule by molecule; a
// row that must come by mass is checked for it. False on any difference.
bool checkRow(const Group &group, const Row &row, const Row *peer) {
  const size_t count = group.molecules->size();
  PeakSummary mine, theirs, mineSum, theirsSum;
  size_t differing = 0, unsorted = 0;
  for (const Molecule &molecule : *group.molecules) {
    row.compute(molecule, &mine);
    accumulate(mineSum, mine);
    if (row.byMass && !mine.byMass) ++unsorted;
    if (peer == nullptr) continue;
    peer->compute(molecule, &theirs);
    accumulate(theirsSum, theirs);
    if (agree(mine, theirs) || differing++ > 0 || count == 1) continue;
    std::printf("  first difference, %s:\n", molecule.formula.c_str());
    printSummary("fskit", row.name, mine);
    printSummary("peer", peer->name, theirs);
  }
  std::printf("%s (%zu molecule%s)%s\n", group.name.c_str(), count, count == 1 ? "" : "s",
              count == 1 ? "" : ", sums over them");
  printSummary("fskit", row.name, mineSum);
  if (peer != nullptr) printSummary("peer", peer->name, theirsSum);
  if (differing > 0)
    std::printf("  !!! MISMATCH: %zu of %zu molecules differ in peaks, total or largest\n",
                differing, count);
  if (unsorted > 0)
    std::printf("  !!! NOT BY MASS: %zu of %zu patterns asked by mass are not sorted\n",
                unsorted, count);
  return differing == 0 && unsorted == 0;
}

// Every fskit row of the group against every peer row.
bool checkGroup(const Group &group) {
  bool ok = true;
  for (const Row &row : group.fskit) {
    if (group.peers.empty()) ok = checkRow(group, row, nullptr) && ok;
    for (const Row &peer : group.peers) ok = checkRow(group, row, &peer) && ok;
  }
  return ok;
}

// ---- The timed rows ----

void registerRow(const std::string &name, const std::vector<Molecule> &molecules,
                 const Compute &compute) {
  benchmark::RegisterBenchmark(name.c_str(), [&molecules, compute](benchmark::State &state) {
    size_t peaks = 0;
    for (auto _ : state) {
      peaks = 0;
      for (const Molecule &molecule : molecules) peaks += compute(molecule, nullptr);
    }
    state.counters["peaks"] = double(peaks);
    state.SetItemsProcessed(state.iterations() * int64_t(molecules.size()));
  })->Unit(benchmark::kMicrosecond);
}

// The peer rows of the group `groupName`, joined by '|' for fastestOf.
std::string peerNames(const std::vector<Group> &all, const std::string &groupName) {
  std::string names;
  for (const Group &group : all) {
    if (group.name != groupName) continue;
    for (const Row &peer : group.peers)
      names += (names.empty() ? "" : "|") + group.name + "/" + peer.name;
  }
  return names;
}

}  // namespace

int main(int argc, char **argv) {
  if (fsLoadElemTable(FSKIT_ELEMENT_FILE) != 1) {
    std::fprintf(stderr, "cannot load %s\n", FSKIT_ELEMENT_FILE);
    return 1;
  }
  const std::vector<Molecule> insulin = molecules({fskit::bench::kInsulin});
  const std::vector<Molecule> protein = molecules({fskit::bench::kProtein20k});
  const std::vector<Molecule> small = molecules(fskit::bench::smallFormulas(kSmallCount));
  const std::vector<Group> all = groups(insulin, protein, small);

  std::printf("Check (each pattern once, untimed; peaks equal, totals and largest within %g)\n",
              kTolerance);
  bool ok = true;
  for (const Group &group : all) ok = checkGroup(group) && ok;
  std::printf("%s\n\n", ok ? "Check passed." : "!!! CHECK FAILED: see the lines marked !!! above");

  std::vector<fskit::bench::Ratio> ratios;
  for (const Group &group : all) {
    for (const Row &row : group.fskit) {
      registerRow(group.name + "/" + row.name, *group.molecules, row.compute);
      for (const std::string &against : group.against)
        ratios.push_back({group.name + "/" + row.name, peerNames(all, against)});
    }
    for (const Row &row : group.peers)
      registerRow(group.name + "/" + row.name, *group.molecules, row.compute);
  }
  int status = fskit::bench::runWithRatios(argc, argv, ratios, {.candidateOverBaseline = true});
  if (!ok) std::printf("\n!!! The check failed: see its lines before the runs.\n");
  return status;
}
