// SPDX-License-Identifier: MIT
// Isotopologues: each element's configurations and their products over the
// molecule, as fine structure or as a nominal distribution.
#include <array>
#include <numbers>
#include <numeric>

#include "chemistry/isotope_pattern.h"

namespace fskit::chemistry::pattern {
namespace {

// Entries of a nominal distribution below this share of its largest are
// dropped: together they stay far below the 1e-9 a pattern is exact to.
constexpr double kTrim = 1e-18;

constexpr int64_t kFactorialTable = 1024;

const std::array<double, kFactorialTable> &factorialTable() {
  static const std::array<double, kFactorialTable> table = [] {
    std::array<double, kFactorialTable> logs{};
    for (int64_t k = 1; k < kFactorialTable; ++k) logs[k] = logs[k - 1] + std::log(double(k));
    return logs;
  }();
  return table;
}

// Drops the entries below kTrim of the largest from both ends.
void trim(NominalDistribution &d) {
  if (d.probability.empty()) return;
  double floor = *std::max_element(d.probability.begin(), d.probability.end()) * kTrim;
  size_t end = d.probability.size();
  while (end > 1 && d.probability[end - 1] < floor) --end;
  size_t begin = 0;
  while (begin + 1 < end && d.probability[begin] < floor) ++begin;
  d.probability.assign(d.probability.begin() + ptrdiff_t(begin), d.probability.begin() + ptrdiff_t(end));
  d.weightedMass.assign(d.weightedMass.begin() + ptrdiff_t(begin), d.weightedMass.begin() + ptrdiff_t(end));
  d.first += int64_t(begin);
}

// One atom of the element as a nominal distribution.
NominalDistribution singleAtom(const ElementIsotopes &element) {
  NominalDistribution d;
  int32_t last = *std::max_element(element.shift.begin(), element.shift.end());
  d.probability.assign(size_t(last) + 1, 0.0);
  d.weightedMass.assign(size_t(last) + 1, 0.0);
  for (size_t i = 0; i < element.mass.size(); ++i) {
    d.probability[size_t(element.shift[i])] += element.probability[i];
    d.weightedMass[size_t(element.shift[i])] += element.probability[i] * element.mass[i];
  }
  return d;
}

// The distribution of `count` atoms by squaring: for elements with many
// isotopes, whose configurations are too many to walk.
NominalDistribution power(const NominalDistribution &atom, int64_t count) {
  NominalDistribution result{0, {1.0}, {0.0}};
  NominalDistribution square = atom;
  for (int64_t n = count; n > 0; n >>= 1) {
    if (n & 1) result = convolve(result, square);
    if (n > 1) square = convolve(square, square);
  }
  return result;
}

// Walks the element's configurations into nominal bins.
NominalDistribution walkedNominal(const ElementIsotopes &element) {
  struct Entry {
    int64_t shift;
    double probability, mass;
  };
  std::vector<Entry> entries;
  walkConfigurations(element, modeProbability(element) * kTrim,
                     [&](double p, double mass, int64_t shift) {
                       entries.push_back({shift, p, mass});
                       return true;
                     });
  auto [low, high] = std::minmax_element(entries.begin(), entries.end(),
                                         [](const Entry &a, const Entry &b) { return a.shift < b.shift; });
  NominalDistribution d;
  d.first = low->shift;
  d.probability.assign(size_t(high->shift - low->shift) + 1, 0.0);
  d.weightedMass.assign(d.probability.size(), 0.0);
  for (const Entry &e : entries) {
    d.probability[size_t(e.shift - d.first)] += e.probability;
    d.weightedMass[size_t(e.shift - d.first)] += e.probability * e.mass;
  }
  return d;
}

// Combines element `index` onwards into `peaks`, each list sorted by falling
// probability: a list stops where even the best of the rest cannot lift a
// product to the threshold.
class FineProduct {
 public:
  FineProduct(std::vector<std::vector<Peak>> &lists, std::vector<double> &restBest,
              double threshold, size_t maxPeaks, std::vector<Peak> &peaks)
      : lists_(lists), restBest_(restBest), threshold_(threshold), maxPeaks_(maxPeaks),
        peaks_(peaks) {}

  bool run(double base) {
    combine(0, 1.0, base);
    return !full_;
  }

 private:
  void combine(size_t index, double partial, double mass) {
    const std::vector<Peak> &list = lists_[index];
    double bound = threshold_ / restBest_[index + 1];
    if (index + 1 == lists_.size()) {
      for (const Peak &c : list) {
        double p = partial * c.probability;
        if (p < threshold_) break;
        peaks_.push_back({mass + c.mass, p});
      }
      if (peaks_.size() > maxPeaks_) full_ = true;
      return;
    }
    for (const Peak &c : list) {
      double p = partial * c.probability;
      if (p < bound || full_) break;
      combine(index + 1, p, mass + c.mass);
    }
  }

  std::vector<std::vector<Peak>> &lists_;
  std::vector<double> &restBest_;
  double threshold_;
  size_t maxPeaks_;
  std::vector<Peak> &peaks_;
  bool full_ = false;
};

}  // namespace

double logFactorial(int64_t k) {
  if (k < kFactorialTable) return factorialTable()[size_t(k)];
  // Stirling's series; its next term is below 1e-22 from here on.
  double x = double(k);
  double inv = 1.0 / x, inv2 = inv * inv;
  return x * std::log(x) - x + 0.5 * std::log(2.0 * std::numbers::pi * x) +
         inv * (1.0 / 12 - inv2 * (1.0 / 360 - inv2 * (1.0 / 1260 - inv2 / 1680)));
}

double modeProbability(const ElementIsotopes &element) {
  if (element.fixed()) return 1.0;
  // The log-probability is a sum of concave terms in each isotope's count,
  // so adding atoms one at a time where they raise it most, from a start
  // below the mode, ends on the mode.
  size_t n = element.mass.size();
  std::vector<int64_t> counts(n);
  int64_t placed = 0;
  for (size_t i = 0; i < n; ++i) {
    counts[i] = std::max<int64_t>(0, int64_t(double(element.count) * element.probability[i]) - 1);
    placed += counts[i];
  }
  for (; placed < element.count; ++placed) {
    size_t best = 0;
    for (size_t i = 1; i < n; ++i)
      if (element.probability[i] / double(counts[i] + 1) >
          element.probability[best] / double(counts[best] + 1))
        best = i;
    ++counts[best];
  }
  double log = logFactorial(element.count);
  for (size_t i = 0; i < n; ++i)
    log += double(counts[i]) * std::log(element.probability[i]) - logFactorial(counts[i]);
  return std::exp(log);
}

NominalDistribution convolve(const NominalDistribution &a, const NominalDistribution &b) {
  NominalDistribution c;
  c.first = a.first + b.first;
  size_t la = a.probability.size(), lb = b.probability.size();
  c.probability.assign(la + lb - 1, 0.0);
  c.weightedMass.assign(la + lb - 1, 0.0);
  for (size_t i = 0; i < la; ++i) {
    double pa = a.probability[i], wa = a.weightedMass[i];
    double *p = c.probability.data() + i, *w = c.weightedMass.data() + i;
    for (size_t j = 0; j < lb; ++j) {
      p[j] += pa * b.probability[j];
      w[j] += pa * b.weightedMass[j] + wa * b.probability[j];
    }
  }
  trim(c);
  return c;
}

NominalDistribution elementNominal(const ElementIsotopes &element) {
  if (element.fixed()) return {0, {1.0}, {double(element.count) * element.mass[0]}};
  // Up to four isotopes the configurations above the trim are few enough
  // to walk; beyond, squaring the one-atom distribution is cheaper.
  if (element.mass.size() <= 4) return walkedNominal(element);
  return power(singleAtom(element), element.count);
}

bool fineStructure(const std::vector<ElementIsotopes> &elements, double relative,
                   size_t maxPeaks, std::vector<Peak> &peaks) {
  peaks.clear();
  double base = 0.0;
  std::vector<std::vector<Peak>> lists;
  std::vector<double> best;
  for (const ElementIsotopes &element : elements) {
    if (element.fixed()) {
      base += double(element.count) * element.mass[0];
      continue;
    }
    double top = modeProbability(element);
    std::vector<Peak> list;
    bool complete = walkConfigurations(element, top * relative, [&](double p, double mass, int64_t) {
      list.push_back({mass, p});
      return list.size() <= maxPeaks;
    });
    if (!complete) return false;
    std::sort(list.begin(), list.end(),
              [](const Peak &a, const Peak &b) { return a.probability > b.probability; });
    lists.push_back(std::move(list));
    best.push_back(top);
  }
  if (lists.empty()) {
    peaks.push_back({base, 1.0});
    return true;
  }
  // The longest list innermost, where the loop is tightest.
  std::vector<size_t> order(lists.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::sort(order.begin(), order.end(),
            [&](size_t a, size_t b) { return lists[a].size() < lists[b].size(); });
  std::vector<std::vector<Peak>> sorted;
  std::vector<double> restBest(lists.size() + 1, 1.0);
  double threshold = relative;
  for (size_t i : order) {
    sorted.push_back(std::move(lists[i]));
    threshold *= best[i];
  }
  for (size_t i = order.size(); i-- > 0;) restBest[i] = restBest[i + 1] * best[order[i]];
  return FineProduct(sorted, restBest, threshold, maxPeaks, peaks).run(base);
}

}  // namespace fskit::chemistry::pattern
