// SPDX-License-Identifier: MIT
// isotopePattern: the isotopologues grouped into peaks, then left out below
// the minimum relative intensity or cut to the coverage asked for.
#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "chemistry/isotope_pattern.h"
#include "chemistry/isotope_pattern_internal.h"

namespace fskit::chemistry {
namespace {

using pattern::Peak;

// At a resolving power the pattern is merged from the isotopologues that
// make up all but this share of the molecules.
constexpr double kResolutionLeftOut = 1e-11;

// A coverage is reached when the peaks add up to it within rounding.
constexpr double kCoverageSlack = 1e-12;

std::string tooMany(size_t maxPeaks) {
  return "the pattern has more than " + std::to_string(maxPeaks) +
         " peaks; leave out more of the small ones";
}

const char *invalidRequest(const PatternRequest &r) {
  if (r.grouping == PeakGrouping::kResolution && !(r.resolution > 0.0 && std::isfinite(r.resolution)))
    return "resolution must be a number above 0";
  if (r.coverage != 0.0) {
    if (!(r.coverage > 0.0 && r.coverage <= 1.0)) return "coverage must be above 0 and at most 1";
  } else if (!(r.minRelative > 0.0 && r.minRelative <= 100.0)) {
    return "min-relative must be above 0 and at most 100";
  }
  return nullptr;
}

double sumOf(const std::vector<Peak> &peaks, size_t begin, size_t end) {
  double sum = 0.0;
  for (size_t i = begin; i < end; ++i) sum += peaks[i].probability;
  return sum;
}

// Keeps the smallest set of peaks whose probabilities add up to at least
// `target`: the largest ones, found by partitioning around pivots rather
// than sorting them all.
void keepCovering(std::vector<Peak> &peaks, double target) {
  size_t low = 0, high = peaks.size();
  double need = target - kCoverageSlack;
  while (high - low > 16) {
    double a = peaks[low].probability, b = peaks[(low + high) / 2].probability,
           c = peaks[high - 1].probability;
    double pivot = std::max(std::min(a, b), std::min(std::max(a, b), c));
    auto above = std::partition(peaks.begin() + ptrdiff_t(low), peaks.begin() + ptrdiff_t(high),
                                [&](const Peak &p) { return p.probability > pivot; });
    auto equal = std::partition(above, peaks.begin() + ptrdiff_t(high),
                                [&](const Peak &p) { return p.probability == pivot; });
    size_t aboveEnd = size_t(above - peaks.begin()), equalEnd = size_t(equal - peaks.begin());
    double aboveSum = sumOf(peaks, low, aboveEnd);
    if (aboveSum >= need) {
      high = aboveEnd;
      continue;
    }
    need -= aboveSum;
    double equalSum = sumOf(peaks, aboveEnd, equalEnd);
    if (equalSum >= need) {
      size_t take = std::min(equalEnd - aboveEnd, size_t(std::ceil(need / pivot)));
      peaks.resize(aboveEnd + take);
      return;
    }
    need -= equalSum;
    low = equalEnd;
  }
  std::sort(peaks.begin() + ptrdiff_t(low), peaks.begin() + ptrdiff_t(high),
            [](const Peak &x, const Peak &y) { return x.probability > y.probability; });
  size_t end = low;
  while (end < high && need > 0.0) need -= peaks[end++].probability;
  peaks.resize(end);
}

// Fine structure down to a threshold that falls tenfold until the
// isotopologues cover `target`.
bool fineCovering(const std::vector<pattern::ElementIsotopes> &elements, double target,
                  size_t maxPeaks, std::vector<Peak> &peaks) {
  for (double relative = 1e-2;; relative *= 0.1) {
    if (!pattern::fineStructure(elements, relative, maxPeaks, peaks)) return false;
    if (sumOf(peaks, 0, peaks.size()) >= target - kCoverageSlack || relative < 1e-300) return true;
  }
}

std::vector<Peak> nominalPeaks(const std::vector<pattern::ElementIsotopes> &elements) {
  pattern::NominalDistribution total{0, {1.0}, {0.0}};
  for (const pattern::ElementIsotopes &element : elements)
    total = pattern::convolve(total, pattern::elementNominal(element));
  std::vector<Peak> peaks;
  for (size_t i = 0; i < total.probability.size(); ++i)
    if (total.probability[i] > 0.0)
      peaks.push_back({total.weightedMass[i] / total.probability[i], total.probability[i]});
  return peaks;
}

// Each peak is founded by its most probable isotopologue; every other one
// joins the nearest peak founded by a more probable one within m/R of it,
// or founds a peak itself. Small isotopologues thus never bridge two peaks.
std::vector<Peak> mergeAtResolution(std::vector<Peak> isotopologues, double resolution) {
  std::sort(isotopologues.begin(), isotopologues.end(),
            [](const Peak &a, const Peak &b) { return a.probability > b.probability; });
  struct Merged {
    double weightedMass = 0.0, probability = 0.0;
  };
  std::vector<Merged> merged;
  std::map<double, size_t> founders;  // founder's mass -> merged index
  for (const Peak &p : isotopologues) {
    double width = p.mass / resolution;
    auto next = founders.lower_bound(p.mass);
    auto nearest = founders.end();
    if (next != founders.end() && next->first - p.mass <= width) nearest = next;
    if (next != founders.begin()) {
      auto before = std::prev(next);
      if (p.mass - before->first <= width &&
          (nearest == founders.end() || p.mass - before->first < next->first - p.mass))
        nearest = before;
    }
    size_t index;
    if (nearest != founders.end()) {
      index = nearest->second;
    } else {
      index = merged.size();
      merged.push_back({});
      founders.emplace(p.mass, index);
    }
    merged[index].weightedMass += p.mass * p.probability;
    merged[index].probability += p.probability;
  }
  std::vector<Peak> peaks;
  peaks.reserve(merged.size());
  for (const Merged &m : merged) peaks.push_back({m.weightedMass / m.probability, m.probability});
  return peaks;
}

void dropBelow(std::vector<Peak> &peaks, double relative) {
  double largest = 0.0;
  for (const Peak &p : peaks) largest = std::max(largest, p.probability);
  std::erase_if(peaks, [&](const Peak &p) { return p.probability < largest * relative; });
}

}  // namespace

IsotopePattern isotopePattern(const std::vector<FormulaAtom> &atoms,
                              const PatternRequest &request) {
  IsotopePattern result;
  if (const char *invalid = invalidRequest(request)) {
    result.error = invalid;
    return result;
  }
  std::vector<pattern::ElementIsotopes> elements;
  if (!pattern::gatherIsotopes(atoms, elements, result.error)) return result;
  bool covering = request.coverage > 0.0;
  double relative = request.minRelative / 100.0;
  std::vector<Peak> peaks;
  bool sized = true;
  switch (request.grouping) {
    case PeakGrouping::kNominal:
      peaks = nominalPeaks(elements);
      break;
    case PeakGrouping::kFine:
      sized = covering ? fineCovering(elements, request.coverage, request.maxPeaks, peaks)
                       : pattern::fineStructure(elements, relative, request.maxPeaks, peaks);
      break;
    case PeakGrouping::kResolution:
      sized = fineCovering(elements, 1.0 - kResolutionLeftOut, request.maxPeaks, peaks);
      if (sized) peaks = mergeAtResolution(std::move(peaks), request.resolution);
      break;
  }
  if (!sized) {
    result.error = tooMany(request.maxPeaks);
    return result;
  }
  if (covering) keepCovering(peaks, request.coverage);
  else if (request.grouping != PeakGrouping::kFine) dropBelow(peaks, relative);
  if (request.byMass || request.grouping != PeakGrouping::kFine)
    std::sort(peaks.begin(), peaks.end(), [](const Peak &a, const Peak &b) { return a.mass < b.mass; });
  result.mass.reserve(peaks.size());
  result.fraction.reserve(peaks.size());
  for (const Peak &p : peaks) {
    result.mass.push_back(p.mass);
    result.fraction.push_back(p.probability);
    result.largest = std::max(result.largest, p.probability);
  }
  return result;
}

void toMz(IsotopePattern &pattern, int32_t charge) {
  for (double &m : pattern.mass) m = chargedMz(m, charge);
}

}  // namespace fskit::chemistry
