// SPDX-License-Identifier: MIT
// isotopePattern: the isotopologues grouped into peaks, then left out below
// the minimum relative intensity or cut to the coverage asked for.
#include <algorithm>
#include <bit>
#include <cmath>
#include <map>
#include <numeric>

#include "chemistry/isotope_pattern.h"
#include "chemistry/isotope_pattern_internal.h"

namespace fskit::chemistry {
namespace {

using pattern::Peak;

// At a resolving power the pattern is merged from the isotopologues that
// make up all but this share of the molecules, as far as this many of them
// reach; what they leave out of each nominal mass joins as one more.
constexpr double kResolutionLeftOut = 1e-9;
constexpr size_t kResolutionIsotopologues = 1'000'000;

// A coverage is reached when the peaks add up to it within rounding.
constexpr double kCoverageSlack = 1e-12;

// A nominal pattern is refused when one element's distribution would take
// more steps than this (a few seconds).
constexpr double kMaxNominalSteps = 1e8;

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

double sumOf(const std::vector<double> &values) {
  double sum = 0.0;
  for (double v : values) sum += v;
  return sum;
}

// The smallest probability the smallest set of peaks adding up to at least
// `target` takes, and how many peaks of exactly that probability it takes.
// The peaks are summed in buckets of a quarter octave below the largest;
// only the bucket where the sum reaches the target is sorted.
struct CoverageCut {
  double probability = 0.0;
  size_t ties = 0;
};
CoverageCut coverageCut(const std::vector<double> &values, double target) {
  constexpr int kQuarterOctave = 50;  // keeps the exponent and two mantissa bits
  constexpr size_t kBuckets = 4096;
  auto key = [](double v) { return std::bit_cast<uint64_t>(v) >> kQuarterOctave; };
  uint64_t top = key(*std::max_element(values.begin(), values.end()));
  auto bucketOf = [&](double v) { return size_t(std::min<uint64_t>(top - key(v), kBuckets - 1)); };
  std::vector<double> sums(kBuckets, 0.0);
  for (double v : values) sums[bucketOf(v)] += v;
  double need = target * (1.0 - kCoverageSlack);
  size_t bucket = 0;
  for (; bucket + 1 < kBuckets && sums[bucket] < need; ++bucket) need -= sums[bucket];
  std::vector<double> edge;
  for (double v : values)
    if (bucketOf(v) == bucket) edge.push_back(v);
  std::sort(edge.begin(), edge.end(), std::greater<double>());
  CoverageCut cut;
  for (size_t i = 0; i < edge.size() && need > 0.0; ++i) {
    need -= edge[i];
    cut.ties = edge[i] == cut.probability ? cut.ties + 1 : 1;
    cut.probability = edge[i];
  }
  return cut;
}

// Keeps the peaks whose probability `keep` accepts, in their order.
template <typename Keep>
void keepIf(pattern::PeakColumns &peaks, Keep keep) {
  size_t kept = 0;
  for (size_t i = 0; i < peaks.size(); ++i) {
    if (!keep(peaks.probability[i])) continue;
    peaks.mass[kept] = peaks.mass[i];
    peaks.probability[kept++] = peaks.probability[i];
  }
  peaks.mass.resize(kept);
  peaks.probability.resize(kept);
}

// Keeps the smallest set of peaks whose probabilities add up to at least
// `target`, in their order.
void keepCovering(pattern::PeakColumns &peaks, double target) {
  CoverageCut cut = coverageCut(peaks.probability, target);
  keepIf(peaks, [&](double p) {
    return p > cut.probability || (p == cut.probability && cut.ties-- > 0);
  });
}

// Fine structure down to a threshold that falls until the isotopologues
// cover `target`. What a threshold leaves out falls about as a power of the
// threshold, so after two tries the next is aimed from the last two (with
// room to spare): the run that reaches the target overshoots little.
// With `settle`, a run that would pass maxPeaks ends the search with the
// last run that did not.
bool fineCovering(const std::vector<pattern::ElementIsotopes> &elements, double target,
                  size_t maxPeaks, pattern::PeakColumns &peaks, bool settle = false) {
  double need = 1.0 - target + kCoverageSlack;
  double relative = 1e-2, lastRelative = 0.0, lastMissing = 0.0;
  for (;;) {
    if (!pattern::fineStructure(elements, relative, maxPeaks, peaks, settle)) {
      if (!settle || lastRelative == 0.0) return false;
      return pattern::fineStructure(elements, lastRelative, maxPeaks, peaks, settle);
    }
    double missing = 1.0 - sumOf(peaks.probability);
    if (missing <= need || relative < 1e-300) return true;
    double next = relative * 0.1;
    if (lastRelative > 0.0 && missing < lastMissing) {
      double slope = std::log(lastMissing / missing) / std::log(lastRelative / relative);
      double aimed = relative * std::pow(need / missing, 1.0 / slope) * 0.5;
      next = std::clamp(aimed, relative * 1e-4, relative * 0.5);
    }
    lastRelative = relative;
    lastMissing = missing;
    relative = next;
  }
}

pattern::NominalDistribution nominalDistribution(
    const std::vector<pattern::ElementIsotopes> &elements) {
  pattern::NominalDistribution total{0, {1.0}, {0.0}}, next;
  for (const pattern::ElementIsotopes &element : elements) {
    pattern::convolve(total, pattern::elementNominal(element), next);
    std::swap(total, next);
  }
  return total;
}

pattern::PeakColumns nominalPeaks(const pattern::NominalDistribution &total) {
  pattern::PeakColumns peaks;
  for (size_t i = 0; i < total.probability.size(); ++i) {
    if (!(total.probability[i] > 0.0)) continue;
    peaks.mass.push_back(total.weightedMass[i] / total.probability[i]);
    peaks.probability.push_back(total.probability[i]);
  }
  return peaks;
}

// The isotopologues a resolving power merges: fine structure as far as it
// goes, and per nominal mass what it leaves out as one isotopologue at the
// mean mass of the rest (kept within the masses seen at that nominal mass).
bool resolutionIsotopologues(const std::vector<pattern::ElementIsotopes> &elements,
                             size_t maxPeaks, pattern::PeakColumns &peaks) {
  pattern::NominalDistribution nominal = nominalDistribution(elements);
  if (!fineCovering(elements, 1.0 - kResolutionLeftOut, std::min(maxPeaks, kResolutionIsotopologues),
                    peaks, true))
    return false;
  size_t bins = nominal.probability.size();
  std::vector<double> probability(nominal.probability), weighted(nominal.weightedMass);
  std::vector<double> lightest(bins, INFINITY), heaviest(bins, -INFINITY);
  for (size_t i = 0; i < peaks.size(); ++i) {
    int64_t bin = peaks.shift[i] - nominal.first;
    if (bin < 0 || bin >= int64_t(bins)) continue;  // beyond the trimmed nominal range
    probability[size_t(bin)] -= peaks.probability[i];
    weighted[size_t(bin)] -= peaks.probability[i] * peaks.mass[i];
    lightest[size_t(bin)] = std::min(lightest[size_t(bin)], peaks.mass[i]);
    heaviest[size_t(bin)] = std::max(heaviest[size_t(bin)], peaks.mass[i]);
  }
  for (size_t b = 0; b < bins; ++b) {
    // Below this the difference is rounding, not isotopologues left out.
    if (!(probability[b] > nominal.probability[b] * 1e-12)) continue;
    double mass = weighted[b] / probability[b];
    if (lightest[b] <= heaviest[b]) mass = std::clamp(mass, lightest[b], heaviest[b]);
    else mass = nominal.weightedMass[b] / nominal.probability[b];
    peaks.mass.push_back(mass);
    peaks.probability.push_back(probability[b]);
  }
  return true;
}

// Each peak is founded by its most probable isotopologue; every other one
// joins the nearest peak founded by a more probable one within m/R of it,
// or founds a peak itself. Small isotopologues thus never bridge two peaks.
pattern::PeakColumns mergeAtResolution(const pattern::PeakColumns &fine, double resolution) {
  std::vector<Peak> isotopologues(fine.size());
  for (size_t i = 0; i < fine.size(); ++i) isotopologues[i] = {fine.mass[i], fine.probability[i]};
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
  pattern::PeakColumns peaks;
  for (const Merged &m : merged) {
    peaks.mass.push_back(m.weightedMass / m.probability);
    peaks.probability.push_back(m.probability);
  }
  return peaks;
}

void dropBelow(pattern::PeakColumns &peaks, double relative) {
  double floor = *std::max_element(peaks.probability.begin(), peaks.probability.end()) * relative;
  keepIf(peaks, [&](double p) { return p >= floor; });
}

}  // namespace

void isotopePattern(const std::vector<FormulaAtom> &atoms, const PatternRequest &request,
                    IsotopePattern &result) {
  result.error.clear();
  result.largest = 0.0;
  // The result's columns are the working space: a caller that passes the
  // same pattern again allocates nothing new for them.
  pattern::PeakColumns peaks{std::move(result.mass), std::move(result.fraction), {}};
  peaks.clear();
  result.mass.clear();
  result.fraction.clear();
  if (const char *invalid = invalidRequest(request)) {
    result.error = invalid;
    return;
  }
  std::vector<pattern::ElementIsotopes> elements;
  if (!pattern::gatherIsotopes(atoms, elements, result.error)) return;
  bool covering = request.coverage > 0.0;
  double relative = request.minRelative / 100.0;
  bool sized = true;
  if (request.grouping != PeakGrouping::kFine) {
    for (const pattern::ElementIsotopes &element : elements) {
      if (pattern::nominalCost(element).steps > kMaxNominalSteps) {
        result.error = "too many " + element.label + " atoms for a nominal pattern";
        return;
      }
    }
  }
  switch (request.grouping) {
    case PeakGrouping::kNominal:
      peaks = nominalPeaks(nominalDistribution(elements));
      break;
    case PeakGrouping::kFine:
      sized = covering ? fineCovering(elements, request.coverage, request.maxPeaks, peaks)
                       : pattern::fineStructure(elements, relative, request.maxPeaks, peaks);
      break;
    case PeakGrouping::kResolution:
      sized = resolutionIsotopologues(elements, request.maxPeaks, peaks);
      if (sized) peaks = mergeAtResolution(peaks, request.resolution);
      break;
  }
  if (!sized) {
    result.error = tooMany(request.maxPeaks);
    return;
  }
  if (covering) keepCovering(peaks, request.coverage);
  else if (request.grouping != PeakGrouping::kFine) dropBelow(peaks, relative);
  if (request.byMass || request.grouping != PeakGrouping::kFine) pattern::sortByMass(peaks);
  result.largest = *std::max_element(peaks.probability.begin(), peaks.probability.end());
  result.mass = std::move(peaks.mass);
  result.fraction = std::move(peaks.probability);
}

IsotopePattern isotopePattern(const std::vector<FormulaAtom> &atoms,
                              const PatternRequest &request) {
  IsotopePattern result;
  isotopePattern(atoms, request, result);
  return result;
}

void toMz(IsotopePattern &pattern, int32_t charge) {
  for (double &m : pattern.mass) m = chargedMz(m, charge);
}

}  // namespace fskit::chemistry
