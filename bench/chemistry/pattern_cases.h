// SPDX-License-Identifier: MIT
// The molecules of the isotope pattern benchmark, and what its check
// compares of a pattern computed by fskit and by the peer.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace fskit::bench {

inline constexpr const char *kInsulin = "C254H377N65O75S6";
inline constexpr const char *kProtein20k = "C1000H1600N280O300S10";

// `count` formulas C1-30 H1-50 N0-4 O0-9 from a fixed seed, the same on
// every machine (the engine's output is fixed by the standard; a
// distribution's is not, so the counts are taken by remainder).
inline std::vector<std::string> smallFormulas(size_t count) {
  std::mt19937 engine(20240521u);
  auto between = [&engine](uint32_t low, uint32_t high) {
    return low + uint32_t(engine() % (high - low + 1));
  };
  std::vector<std::string> formulas;
  for (size_t i = 0; i < count; ++i) {
    std::string formula = "C" + std::to_string(between(1, 30));
    formula += "H" + std::to_string(between(1, 50));
    if (uint32_t n = between(0, 4)) formula += "N" + std::to_string(n);
    if (uint32_t o = between(0, 9)) formula += "O" + std::to_string(o);
    formulas.push_back(formula);
  }
  return formulas;
}

// The number of peaks of a pattern, their total probability, the largest,
// and whether they come by mass.
struct PeakSummary {
  size_t peaks = 0;
  double total = 0.0, largest = 0.0;
  bool byMass = true;
};

inline PeakSummary summarise(const double *masses, const double *probabilities, size_t count) {
  PeakSummary summary{count, 0.0, 0.0, std::is_sorted(masses, masses + count)};
  for (size_t i = 0; i < count; ++i) {
    summary.total += probabilities[i];
    if (probabilities[i] > summary.largest) summary.largest = probabilities[i];
  }
  return summary;
}

}  // namespace fskit::bench
