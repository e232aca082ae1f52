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
  bool fixed() const { return mass.size() == 1; }
};

// The isotopes of every atom in `atoms` from the present element table.
// False, with `error` set, when an atom is not in the table.
bool gatherIsotopes(const std::vector<FormulaAtom> &atoms,
                    std::vector<ElementIsotopes> &elements, std::string &error);

// ln(k!), without the process-wide state std::lgamma writes (signgam).
double logFactorial(int64_t k);

// The probability of an element's most probable configuration.
double modeProbability(const ElementIsotopes &element);

// One isotope configuration of an element, or one isotopologue.
struct Peak {
  double mass;
  double probability;
};

// Walks every configuration of `element` with probability at or above
// `cutoff`, calling sink(probability, mass, shift) once for each until the
// sink returns false. The
// configuration is built isotope by isotope as a chain of binomials (the
// count of isotope j among the atoms not yet given to isotopes above j),
// each walked outward from its mode, so a branch stops as soon as its
// partial probability falls below the cutoff.
template <typename Sink>
class ConfigurationWalk {
 public:
  ConfigurationWalk(const ElementIsotopes &element, double cutoff, Sink &sink)
      : e_(element), cutoff_(cutoff), sink_(sink) {
    size_t n = e_.mass.size();
    q_.resize(n);
    logQ_.resize(n);
    log1mQ_.resize(n);
    ratio_.resize(n);
    double below = e_.probability[0];
    for (size_t j = 1; j < n; ++j) {
      below += e_.probability[j];
      double q = e_.probability[j] / below;
      q_[j] = q;
      logQ_[j] = std::log(q);
      log1mQ_[j] = std::log1p(-q);
      ratio_[j] = q / (1.0 - q);
    }
  }

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
    int64_t mode = std::min<int64_t>(r, int64_t(double(r + 1) * q_[j]));
    double top = std::exp(logFactorial(r) - logFactorial(mode) - logFactorial(r - mode) +
                          double(mode) * logQ_[j] + double(r - mode) * log1mQ_[j]);
    double rho = ratio_[j];
    double b = top;
    for (int64_t k = mode; k <= r && partial * b >= cutoff_ && !stopped_; ++k) {
      level(j - 1, r - k, partial * b, mass + double(k) * e_.mass[j], shift + k * e_.shift[j]);
      b *= double(r - k) / double(k + 1) * rho;
    }
    b = top;
    for (int64_t k = mode; k > 0;) {
      b *= double(k) / (double(r - k + 1) * rho);
      --k;
      if (partial * b < cutoff_ || stopped_) break;
      level(j - 1, r - k, partial * b, mass + double(k) * e_.mass[j], shift + k * e_.shift[j]);
    }
  }

  const ElementIsotopes &e_;
  double cutoff_;
  Sink &sink_;
  std::vector<double> q_, logQ_, log1mQ_, ratio_;
  bool stopped_ = false;
};

template <typename Sink>
bool walkConfigurations(const ElementIsotopes &element, double cutoff, Sink &&sink) {
  ConfigurationWalk<std::remove_reference_t<Sink>> walk(element, cutoff, sink);
  return walk.run();
}

// Nominal distribution: probability and probability-weighted mass per
// total shift, from `first` on.
struct NominalDistribution {
  int64_t first = 0;
  std::vector<double> probability;
  std::vector<double> weightedMass;
};

// The nominal distribution of one element, entries below 1e-18 of its
// largest left out.
NominalDistribution elementNominal(const ElementIsotopes &element);

// The product of two nominal distributions, trimmed the same way.
NominalDistribution convolve(const NominalDistribution &a, const NominalDistribution &b);

// Every isotopologue of `elements` whose probability is at least `relative`
// times the most probable one's, in no particular order; false when there
// would be more than `maxPeaks`.
bool fineStructure(const std::vector<ElementIsotopes> &elements, double relative,
                   size_t maxPeaks, std::vector<Peak> &peaks);

}  // namespace fskit::chemistry::pattern
