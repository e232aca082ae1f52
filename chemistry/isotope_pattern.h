// SPDX-License-Identifier: MIT
// Inside the isotope pattern: each element's isotopes, the enumeration of
// one element's isotope configurations, and the peak lists built from them.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "chemistry/formula_text_internal.h"

namespace fskit::chemistry::pattern {

// One element of a molecule (or one labelled isotope) with its atom count.
// Isotopes are ordered by falling abundance; probabilities add up to 1.
struct ElementIsotopes {
  std::string label;
  int64_t count = 0;
  std::vector<double> mass;
  std::vector<double> probability;
  std::vector<int32_t> shift;  // mass number minus the lightest one's
  // For the walk, per isotope j >= 1: q = p_j / (p_0 + ... + p_j), the chance
  // that an atom not given to an isotope above j is of isotope j.
  struct Step {
    double q, logQ, log1mQ, ratio;  // ratio = q / (1 - q)
  };
  std::vector<Step> steps;
  bool fixed() const { return mass.size() == 1; }
};

// The isotopes of every atom in `atoms` from the present element table.
// False, with `error` set, when an atom is not in the table.
bool gatherIsotopes(const std::vector<FormulaAtom> &atoms,
                    std::vector<ElementIsotopes> &elements, std::string &error);

// ln(k!), without the process-wide state std::lgamma writes (signgam).
double logFactorial(int64_t k);

// The most probable count of a binomial over `atoms` trials with the step's
// chance, and its probability.
struct BinomialMode {
  int64_t count;
  double probability;
};
inline BinomialMode binomialMode(int64_t atoms, const ElementIsotopes::Step &step) {
  int64_t mode = std::min<int64_t>(atoms, int64_t(double(atoms + 1) * step.q));
  return {mode, std::exp(logFactorial(atoms) - logFactorial(mode) - logFactorial(atoms - mode) +
                         double(mode) * step.logQ + double(atoms - mode) * step.log1mQ)};
}

// The probability of an element's most probable configuration.
double modeProbability(const ElementIsotopes &element);

// Walks every configuration of `element` with probability at or above
// `cutoff`, calling sink(probability, mass, shift) once for each until the
// sink returns false. The configuration is built isotope by isotope as a
// chain of binomials (the count of isotope j among the atoms not yet given
// to isotopes above j), each walked outward from its mode, so a branch
// stops as soon as its partial probability falls below the cutoff.
template <typename Sink>
class ConfigurationWalk {
 public:
  ConfigurationWalk(const ElementIsotopes &element, double cutoff, Sink &sink)
      : e_(element), cutoff_(cutoff), sink_(sink) {}

  // False when the sink stopped the walk.
  bool run() {
    level(int(e_.mass.size()) - 1, e_.count, 1.0, 0.0, 0);
    return !stopped_;
  }

 private:
  void level(int j, int64_t r, double partial, double mass, int64_t shift) {
    if (j == 0) {
      if (!sink_(partial, mass + double(r) * e_.mass[0], shift + r * e_.shift[0]))
        stopped_ = true;
      return;
    }
    const ElementIsotopes::Step &step = e_.steps[size_t(j)];
    auto [mode, top] = binomialMode(r, step);
    double b = top;
    for (int64_t k = mode; k <= r && partial * b >= cutoff_ && !stopped_; ++k) {
      level(j - 1, r - k, partial * b, mass + double(k) * e_.mass[j], shift + k * e_.shift[j]);
      b *= double(r - k) / double(k + 1) * step.ratio;
    }
    b = top;
    for (int64_t k = mode; k > 0;) {
      b *= double(k) / (double(r - k + 1) * step.ratio);
      --k;
      if (partial * b < cutoff_ || stopped_) break;
      level(j - 1, r - k, partial * b, mass + double(k) * e_.mass[j], shift + k * e_.shift[j]);
    }
  }

  const ElementIsotopes &e_;
  double cutoff_;
  Sink &sink_;
  bool stopped_ = false;
};

template <typename Sink>
bool walkConfigurations(const ElementIsotopes &element, double cutoff, Sink &&sink) {
  ConfigurationWalk<std::remove_reference_t<Sink>> walk(element, cutoff, sink);
  return walk.run();
}

// One isotope configuration of an element, or one isotopologue.
struct Peak {
  double mass;
  double probability;
};

// Peaks as two columns: masses and probabilities.
struct PeakColumns {
  std::vector<double> mass;
  std::vector<double> probability;
  std::vector<int64_t> shift;  // the total mass number shift, when asked for
  size_t size() const { return mass.size(); }
  void clear() {
    mass.clear();
    probability.clear();
    shift.clear();
  }
};

// Nominal distribution: probability and probability-weighted mass per
// total shift, from `first` on.
struct NominalDistribution {
  int64_t first = 0;
  std::vector<double> probability;
  std::vector<double> weightedMass;
};

// About how many steps the nominal distribution of an element takes, and
// whether walking its configurations takes fewer than squaring.
struct NominalCost {
  double steps = 0.0;
  bool walk = false;
};
NominalCost nominalCost(const ElementIsotopes &element);

// The nominal distribution of one element, entries below 1e-13 of its
// largest left out.
NominalDistribution elementNominal(const ElementIsotopes &element);

// c = the product of two nominal distributions, trimmed the same way (c is
// neither a nor b; its memory is reused).
void convolve(const NominalDistribution &a, const NominalDistribution &b, NominalDistribution &c);

// Every isotopologue of `elements` whose probability is at least `relative`
// times the most probable one's, in no particular order (the most probable
// first); false when there would be more than `maxPeaks`.
// With `withShift` each isotopologue's shift is kept too.
bool fineStructure(const std::vector<ElementIsotopes> &elements, double relative,
                   size_t maxPeaks, PeakColumns &peaks, bool withShift = false);

// Orders `peaks` by increasing mass.
void sortByMass(PeakColumns &peaks);

}  // namespace fskit::chemistry::pattern
