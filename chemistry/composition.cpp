// SPDX-License-Identifier: MIT
// massComposition: mass fractions, rounded by largest remainder.
#include "chemistry/composition_internal.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace fskit::chemistry {

MassComposition massComposition(const std::vector<FormulaAtom> &atoms) {
  MassComposition result;
  double total = 0.0;
  for (const FormulaAtom &atom : atoms) {
    FormulaMasses masses = formulaMasses({atom});
    if (!masses.ok) return MassComposition{};
    std::string label = atom.symbol;
    if (atom.massNumber > 0) label.insert(0, std::to_string(atom.massNumber));
    result.elements.push_back({label, atom.count, masses.average, 0.0, 0});
    total += masses.average;
  }
  if (total <= 0.0) return MassComposition{};
  std::vector<double> remainders;
  int64_t given = 0;
  for (ElementShare &share : result.elements) {
    share.percent = 100.0 * share.mass / total;
    double steps = share.percent * double(kPercentSteps) / 100.0;
    share.percentSteps = int64_t(std::floor(steps));
    remainders.push_back(steps - double(share.percentSteps));
    given += share.percentSteps;
  }
  // The exact steps add up to kPercentSteps up to rounding error, so fewer
  // than one step per element is missing.
  std::vector<size_t> order(result.elements.size());
  std::iota(order.begin(), order.end(), size_t(0));
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return remainders[a] > remainders[b]; });
  for (size_t i = 0; given < kPercentSteps; i = (i + 1) % order.size(), ++given)
    ++result.elements[order[i]].percentSteps;
  result.ok = true;
  return result;
}

MassComposition readMassComposition(const char *formula) {
  FormulaComposition read = readFormulaText(formula);
  if (!read.ok()) {
    MassComposition failed;
    failed.error = std::move(read.error);
    return failed;
  }
  return massComposition(read.atoms);
}

}  // namespace fskit::chemistry
