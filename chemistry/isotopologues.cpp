// SPDX-License-Identifier: MIT
// Isotopologues: each element's configurations and their products over the
// molecule, as fine structure or as a nominal distribution.
#include <array>
#include <bit>
#include <numbers>
#include <numeric>

#include "chemistry/isotope_pattern.h"

namespace fskit::chemistry::pattern {
namespace {

// Entries of a nominal distribution below this share of its largest are
// dropped: together they stay far below the 1e-9 a pattern is exact to.
constexpr double kTrim = 1e-13;

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
  d.probability.resize(end);
  d.weightedMass.resize(end);
  d.probability.erase(d.probability.begin(), d.probability.begin() + ptrdiff_t(begin));
  d.weightedMass.erase(d.weightedMass.begin(), d.weightedMass.begin() + ptrdiff_t(begin));
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
  NominalDistribution result{0, {1.0}, {0.0}}, square = atom, spare;
  for (int64_t n = count; n > 0; n >>= 1) {
    if (n & 1) {
      convolve(result, square, spare);
      std::swap(result, spare);
    }
    if (n > 1) {
      convolve(square, square, spare);
      std::swap(square, spare);
    }
  }
  return result;
}

// Two isotopes: the binomial itself, walked out from its mode, each count of
// the second isotope one bin (their shifts differ by at least one).
NominalDistribution binomialNominal(const ElementIsotopes &element) {
  const ElementIsotopes::Step &step = element.steps[1];
  int64_t n = element.count;
  auto [mode, top] = binomialMode(n, step);
  // The counts whose probability stays above the trim: [low, high].
  int64_t high = mode, low = mode;
  for (double b = top; high < n; ++high) {
    b *= double(n - high) / double(high + 1) * step.ratio;
    if (b < top * kTrim) break;
  }
  for (double b = top; low > 0; --low) {
    b *= double(low) / (double(n - low + 1) * step.ratio);
    if (b < top * kTrim) break;
  }
  int64_t stride = element.shift[1] - element.shift[0];
  int64_t from = n * element.shift[0] + low * stride, to = n * element.shift[0] + high * stride;
  NominalDistribution d;
  d.first = std::min(from, to);
  d.probability.assign(size_t(std::abs(to - from)) + 1, 0.0);
  d.weightedMass.assign(d.probability.size(), 0.0);
  auto place = [&](int64_t k, double p) {
    size_t at = size_t(n * element.shift[0] + k * stride - d.first);
    d.probability[at] = p;
    d.weightedMass[at] = p * (double(n - k) * element.mass[0] + double(k) * element.mass[1]);
  };
  double b = top;
  for (int64_t k = mode; k <= high; ++k) {
    place(k, b);
    b *= double(n - k) / double(k + 1) * step.ratio;
  }
  b = top;
  for (int64_t k = mode; k > low;) {
    b *= double(k) / (double(n - k + 1) * step.ratio);
    place(--k, b);
  }
  return d;
}

// Walks the element's configurations into nominal bins, which grow to
// either side as the walk reaches new shifts.
NominalDistribution walkedNominal(const ElementIsotopes &element) {
  NominalDistribution d;
  bool empty = true;
  walkConfigurations(element, modeProbability(element) * kTrim,
                     [&](double p, double mass, int64_t shift) {
                       if (empty) {
                         d = {shift, {0.0}, {0.0}};
                         empty = false;
                       } else if (shift < d.first) {
                         size_t more = size_t(d.first - shift);
                         d.probability.insert(d.probability.begin(), more, 0.0);
                         d.weightedMass.insert(d.weightedMass.begin(), more, 0.0);
                         d.first = shift;
                       } else if (size_t(shift - d.first) >= d.probability.size()) {
                         d.probability.resize(size_t(shift - d.first) + 1, 0.0);
                         d.weightedMass.resize(d.probability.size(), 0.0);
                       }
                       d.probability[size_t(shift - d.first)] += p;
                       d.weightedMass[size_t(shift - d.first)] += p * mass;
                       return true;
                     });
  return d;
}

// One element's configurations, by falling probability.
struct ConfigurationList {
  std::vector<double> mass, probability;
  std::vector<int64_t> shift;
  double best = 1.0;  // the mode's probability
};

// Combines the lists into `peaks`: a list stops where even the best of the
// lists after it cannot lift a product to the threshold.
class FineProduct {
 public:
  FineProduct(const std::vector<ConfigurationList> &lists, double threshold, size_t maxPeaks,
              bool withShift, PeakColumns &peaks)
      : lists_(lists), restBest_(lists.size() + 1, 1.0), threshold_(threshold),
        maxPeaks_(maxPeaks), withShift_(withShift), peaks_(peaks) {
    for (size_t i = lists.size(); i-- > 0;) restBest_[i] = restBest_[i + 1] * lists[i].best;
  }

  bool run(double base) {
    used_ = peaks_.size();
    combine(0, 1.0, base, 0);
    peaks_.mass.resize(used_);
    peaks_.probability.resize(used_);
    return !full_;
  }

 private:
  void combine(size_t index, double partial, double mass, int64_t shift) {
    const ConfigurationList &list = lists_[index];
    size_t n = list.probability.size();
    const double *p = list.probability.data(), *m = list.mass.data();
    if (index + 1 < lists_.size()) {
      double bound = threshold_ / restBest_[index + 1];
      for (size_t i = 0; i < n && partial * p[i] >= bound && !full_; ++i)
        combine(index + 1, partial * p[i], mass + m[i], withShift_ ? shift + list.shift[i] : 0);
      return;
    }
    // The list falls: the entries above the threshold are a prefix.
    double least = threshold_ / partial;
    size_t count = size_t(std::partition_point(p, p + n, [&](double v) { return v >= least; }) - p);
    size_t at = used_;
    if (at + count > maxPeaks_) {
      full_ = true;
      return;
    }
    if (at + count > peaks_.mass.size()) {  // room in large steps, filled below
      size_t room = std::max(at + count, 2 * peaks_.mass.size() + 1024);
      peaks_.mass.resize(room);
      peaks_.probability.resize(room);
    }
    used_ = at + count;
    double *outMass = peaks_.mass.data() + at, *outProbability = peaks_.probability.data() + at;
    for (size_t i = 0; i < count; ++i) {
      outMass[i] = mass + m[i];
      outProbability[i] = partial * p[i];
    }
    if (withShift_)
      for (size_t i = 0; i < count; ++i) peaks_.shift.push_back(shift + list.shift[i]);
  }

  const std::vector<ConfigurationList> &lists_;
  std::vector<double> restBest_;
  double threshold_;
  size_t maxPeaks_;
  bool withShift_;
  PeakColumns &peaks_;
  size_t used_ = 0;  // peaks written; the columns may be longer while running
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

void convolve(const NominalDistribution &a, const NominalDistribution &b, NominalDistribution &c) {
  c.first = a.first + b.first;
  size_t la = a.probability.size(), lb = b.probability.size();
  c.probability.assign(la + lb - 1, 0.0);
  c.weightedMass.assign(la + lb - 1, 0.0);
  const double *bp = b.probability.data(), *bw = b.weightedMass.data();
  for (size_t i = 0; i < la; ++i) {
    double pa = a.probability[i], wa = a.weightedMass[i];
    double *p = c.probability.data() + i, *w = c.weightedMass.data() + i;
    for (size_t j = 0; j < lb; ++j) {
      p[j] += pa * bp[j];
      w[j] += pa * bw[j] + wa * bp[j];
    }
  }
  trim(c);
}

NominalCost nominalCost(const ElementIsotopes &element) {
  if (element.fixed() || element.mass.size() == 2) return {};
  // Within the trim each count spreads over some 16 standard deviations.
  double n = double(element.count), walk = 1.0, mean = 0.0, square = 0.0;
  for (size_t j = 0; j < element.mass.size(); ++j) {
    double p = element.probability[j], s = double(element.shift[j]);
    if (j > 0) walk *= 2.0 + 16.0 * std::sqrt(n * p * (1.0 - p));
    mean += p * s;
    square += p * s * s;
  }
  double width = 1.0 + 16.0 * std::sqrt(n * std::max(0.0, square - mean * mean)) + double(element.shift.size());
  double squaring = 2.0 * std::log2(n + 1.0) * width * width;
  return walk <= squaring ? NominalCost{walk, true} : NominalCost{squaring, false};
}

NominalDistribution elementNominal(const ElementIsotopes &element) {
  if (element.fixed()) return {0, {1.0}, {double(element.count) * element.mass[0]}};
  if (element.mass.size() == 2) return binomialNominal(element);
  // Walking the configurations above the trim, or squaring the one-atom
  // distribution: whichever does less.
  if (nominalCost(element).walk) return walkedNominal(element);
  return power(singleAtom(element), element.count);
}

bool fineStructure(const std::vector<ElementIsotopes> &elements, double relative,
                   size_t maxPeaks, PeakColumns &peaks, bool withShift) {
  peaks.clear();
  double base = 0.0;
  std::vector<ConfigurationList> lists;
  for (const ElementIsotopes &element : elements) {
    if (element.fixed()) {
      base += double(element.count) * element.mass[0];
      continue;
    }
    double top = modeProbability(element);
    struct Found {
      double mass, probability;
      int64_t shift;
    };
    std::vector<Found> found;
    bool complete = walkConfigurations(element, top * relative, [&](double p, double mass, int64_t shift) {
      found.push_back({mass, p, shift});
      return found.size() <= maxPeaks;
    });
    if (!complete) return false;
    std::sort(found.begin(), found.end(),
              [](const Found &a, const Found &b) { return a.probability > b.probability; });
    ConfigurationList list;
    list.best = top;
    list.mass.reserve(found.size());
    list.probability.reserve(found.size());
    for (const Found &c : found) {
      list.mass.push_back(c.mass);
      list.probability.push_back(c.probability);
      if (withShift) list.shift.push_back(c.shift);
    }
    lists.push_back(std::move(list));
  }
  if (lists.empty()) {
    peaks.mass.push_back(base);
    peaks.probability.push_back(1.0);
    if (withShift) peaks.shift.push_back(0);
    return true;
  }
  // The longest list innermost, where the loop is tightest.
  std::sort(lists.begin(), lists.end(), [](const ConfigurationList &a, const ConfigurationList &b) {
    return a.probability.size() < b.probability.size();
  });
  double threshold = relative;
  for (const ConfigurationList &list : lists) threshold *= list.best;
  return FineProduct(lists, threshold, maxPeaks, withShift, peaks).run(base);
}

void sortByMass(PeakColumns &peaks) {
  size_t n = peaks.size();
  if (n < 2) return;
  if (n <= 1024) {  // a comparison sort is quicker for a thousand or so
    std::vector<Peak> few(n);
    for (size_t i = 0; i < n; ++i) few[i] = {peaks.mass[i], peaks.probability[i]};
    std::sort(few.begin(), few.end(), [](const Peak &a, const Peak &b) { return a.mass < b.mass; });
    for (size_t i = 0; i < n; ++i) {
      peaks.mass[i] = few[i].mass;
      peaks.probability[i] = few[i].probability;
    }
    return;
  }
  // Least significant digit first, 11 bits a pass, on each mass's distance
  // from the lightest (positive doubles order as their bit patterns): only
  // the bits the pattern's span needs.
  auto [lightest, heaviest] = std::minmax_element(peaks.mass.begin(), peaks.mass.end());
  uint64_t floor = std::bit_cast<uint64_t>(*lightest);
  int bits = int(std::bit_width(std::bit_cast<uint64_t>(*heaviest) - floor));
  constexpr int kDigit = 11;
  struct Keyed {
    uint64_t key;
    double probability;
  };
  std::vector<Keyed> from(n), to(n);
  for (size_t i = 0; i < n; ++i)
    from[i] = {std::bit_cast<uint64_t>(peaks.mass[i]) - floor, peaks.probability[i]};
  for (int shift = 0; shift < bits; shift += kDigit) {
    std::array<size_t, (1 << kDigit) + 1> starts{};
    for (const Keyed &k : from) ++starts[((k.key >> shift) & ((1 << kDigit) - 1)) + 1];
    for (size_t d = 1; d < starts.size(); ++d) starts[d] += starts[d - 1];
    for (const Keyed &k : from) to[starts[(k.key >> shift) & ((1 << kDigit) - 1)]++] = k;
    std::swap(from, to);
  }
  for (size_t i = 0; i < n; ++i) {
    peaks.mass[i] = std::bit_cast<double>(from[i].key + floor);
    peaks.probability[i] = from[i].probability;
  }
}

}  // namespace fskit::chemistry::pattern
