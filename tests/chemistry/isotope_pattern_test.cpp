// SPDX-License-Identifier: MIT
// Isotope patterns against an exact expansion of every element's multinomial (all configurations,
// long double), ions against adductMz; fskit pattern --svg.
#include "chemistry/isotope_pattern_internal.h"

#include <algorithm>
#include <cmath>
#include <atomic>
#include <map>
#include <numeric>
#include <thread>

#include "tests/chemistry/example_table.h"

using namespace fskit::chemistry;
using namespace fskit::test;

namespace {

using Pattern = ShippedTableTest;

struct Isotopologue {
  long double mass, probability;
  long nominal;
};

// An atom's natural isotopes (or its labelled one) through the C interface, as fractions.
std::vector<Isotopologue> isotopesOf(const FormulaAtom &atom) {
  std::string label = (atom.massNumber > 0 ? std::to_string(atom.massNumber) : "") + atom.symbol;
  FsElementRecord record;
  int32_t index = fsFindElement(label.c_str(), &record);
  EXPECT_GE(index, 0) << label;
  if (atom.massNumber > 0) return {{record.monoMass, 1.0L, record.nominalMass}};
  std::vector<Isotopologue> isotopes;
  long double total = 0;
  FsElementRecord isotope;
  for (int32_t i = index + 1; fsGetElementInfo(i, &isotope) >= 0 && isotope.isotopeShift != 0; ++i) {
    if (isotope.abundance <= 0) continue;
    isotopes.push_back({isotope.monoMass, isotope.abundance, isotope.nominalMass});
    total += isotope.abundance;
  }
  if (isotopes.empty()) return {{record.monoMass, 1.0L, record.nominalMass}};
  for (Isotopologue &i : isotopes) i.probability /= total;
  return isotopes;
}

// `from` times every configuration of `count` atoms over `isotopes`: n!/prod(k!) * prod(p^k).
std::vector<Isotopologue> expand(const std::vector<Isotopologue> &from,
                                 const std::vector<Isotopologue> &isotopes, long count) {
  std::vector<Isotopologue> product;
  std::vector<long> k(isotopes.size());
  auto place = [&](auto &self, size_t i, long left) -> void {
    if (i + 1 < isotopes.size()) {
      for (k[i] = 0; k[i] <= left; ++k[i]) self(self, i + 1, left - k[i]);
      return;
    }
    k[i] = left;
    Isotopologue c{0, 1, 0};
    long placed = 0;
    for (size_t j = 0; j < k.size(); ++j)
      for (long a = 0; a < k[j]; ++a) {
        c.probability *= isotopes[j].probability * (long double)(++placed) / (long double)(a + 1);
        c.mass += isotopes[j].mass;
        c.nominal += isotopes[j].nominal;
      }
    for (const Isotopologue &f : from)
      product.push_back({f.mass + c.mass, f.probability * c.probability, f.nominal + c.nominal});
  };
  place(place, 0, count);
  return product;
}

// Drops the isotopologues below `relative` of the largest; returns the largest and the dropped sum.
std::pair<long double, long double> keepAbove(std::vector<Isotopologue> &peaks,
                                              long double relative) {
  long double largest = 0, dropped = 0;
  for (const Isotopologue &i : peaks) largest = std::max(largest, i.probability);
  std::erase_if(peaks, [&](const Isotopologue &i) {
    if (i.probability >= largest * relative) return false;
    dropped += i.probability;
    return true;
  });
  return {largest, dropped};
}

std::vector<Isotopologue> peaksOf(const IsotopePattern &pattern) {
  std::vector<Isotopologue> peaks;
  for (size_t i = 0; i < pattern.mass.size(); ++i)
    peaks.push_back({pattern.mass[i], pattern.fraction[i], 0});
  return peaks;
}

void expectSamePeaks(const IsotopePattern &got, const std::vector<Isotopologue> &want) {
  ASSERT_EQ(got.mass.size(), want.size());
  for (size_t i = 0; i < want.size(); ++i) {
    EXPECT_NEAR(got.mass[i], double(want[i].mass), 1e-6) << i;
    EXPECT_NEAR(got.fraction[i], double(want[i].probability), 1e-9) << i;
  }
}

IsotopePattern patternOf(const char *formula, PatternRequest request) {
  IsotopePattern pattern = isotopePattern(atomsOf(formula), request);
  EXPECT_TRUE(pattern.ok()) << formula << ": " << pattern.error;
  return pattern;
}

// Oxygen (three isotopes), sulfur (four), tin (ten: its nominal pattern is squared, not walked),
// a labelled isotope and an element without natural abundance.
const char *const kInsulin = "C254H377N65O75S6";
const char *const kMolecules[] = {"C6H12O6", "CH2Cl2", "C3H7NO2S", "Sn2Cl4", "[13C]2C4H12O6",
                                  "TcO4", "H2O"};

TEST_F(Pattern, NominalFineAndResolutionAgreeWithTheExactExpansion) {
  for (const char *formula : kMolecules) {
    SCOPED_TRACE(formula);
    std::vector<Isotopologue> fine{{0, 1, 0}};
    for (const FormulaAtom &atom : atomsOf(formula))
      fine = expand(fine, isotopesOf(atom), long(atom.count));
    // The exact nominal pattern: probability and weighted mean mass per mass number, by mass.
    std::map<long, Isotopologue> bins;
    for (const Isotopologue &i : fine) {
      bins[i.nominal].mass += i.mass * i.probability;
      bins[i.nominal].probability += i.probability;
    }
    std::vector<Isotopologue> nominal;
    for (auto &[n, bin] : bins) nominal.push_back({bin.mass / bin.probability, bin.probability, n});
    auto [largest, leftOut] = keepAbove(nominal, 1e-4L);
    IsotopePattern got = patternOf(formula, {});
    expectSamePeaks(got, nominal);
    double total = std::accumulate(got.fraction.begin(), got.fraction.end(), 0.0);
    EXPECT_NEAR(total + double(leftOut), 1.0, 1e-9);
    EXPECT_NEAR(got.largest, double(largest), 1e-12);  // valgrind runs long double as double
    // Every isotopologue down to 1e-10 of the largest, one peak each.
    keepAbove(fine, 1e-10L);
    std::sort(fine.begin(), fine.end(),
              [](const Isotopologue &a, const Isotopologue &b) { return a.mass < b.mass; });
    expectSamePeaks(patternOf(formula, {PeakGrouping::kFine, 0, 1e-8}), fine);
    // Resolution merges between the two.
    expectSamePeaks(patternOf(formula, {PeakGrouping::kResolution, 1000}), peaksOf(got));
    expectSamePeaks(patternOf(formula, {PeakGrouping::kResolution, 1e9}),
                    peaksOf(patternOf(formula, {PeakGrouping::kFine})));
  }
}

TEST_F(Pattern, ResolutionMergesOnlyWhatItCannotTellApart) {
  // Insulin at R = 1e4: its nominal masses only, with what the fine structure leaves out.
  expectSamePeaks(patternOf(kInsulin, {PeakGrouping::kResolution, 1e4, 1e-6}),
                  peaksOf(patternOf(kInsulin, {PeakGrouping::kNominal, 0, 1e-6})));
  // Glucose's M+1 at R = 1e5: 13C (181.06674) and 17O (181.06760) merge, 2H (181.06966) not.
  IsotopePattern glucose = patternOf("C6H12O6", {PeakGrouping::kResolution, 1e5});
  std::vector<double> near181;
  for (double m : glucose.mass)
    if (m > 180.5 && m < 181.5) near181.push_back(m);
  ASSERT_EQ(near181.size(), 2u);
  EXPECT_NEAR(near181[0], 181.0668, 1e-4);
  EXPECT_NEAR(near181[1], 181.06966, 1e-4);
}

TEST_F(Pattern, CoverageKeepsTheSmallestSetOfLargestPeaks) {
  for (PeakGrouping grouping : {PeakGrouping::kNominal, PeakGrouping::kFine}) {
    for (double coverage : {0.5, 0.99, 0.999999}) {
      SCOPED_TRACE(coverage);
      IsotopePattern got = patternOf(kInsulin, {grouping, 0, 0.01, coverage});
      double sum = std::accumulate(got.fraction.begin(), got.fraction.end(), 0.0);
      EXPECT_GE(sum, coverage - 1e-12);
      double smallest = *std::min_element(got.fraction.begin(), got.fraction.end());
      EXPECT_LT(sum - smallest, coverage);
      // No peak left out is larger than a kept one.
      IsotopePattern above = patternOf(kInsulin, {grouping, 0, 100 * smallest / got.largest});
      EXPECT_LE(above.mass.size(), got.mass.size() + 1);
      EXPECT_TRUE(std::is_sorted(got.mass.begin(), got.mass.end()));
    }
  }
}

TEST_F(Pattern, IonsAreTheAdductsAtomsAtTheirMz) {
  std::vector<FormulaAtom> glucose = atomsOf("C6H12O6");
  double m = formulaMasses(glucose).monoisotopic;
  for (const char *text : {"[M+H]+", "[M+2H]2+", "[M-H2O+H]+", "[2M+Na]+", "[M-H]-", "[M+Cl]-"}) {
    SCOPED_TRACE(text);
    Adduct adduct = readAdduct(text);
    IonAtoms ion = ionAtoms(glucose, adduct);
    ASSERT_TRUE(ion.ok()) << ion.error;
    IsotopePattern pattern = isotopePattern(ion.atoms, {PeakGrouping::kFine});
    toMz(pattern, adduct.charge);
    EXPECT_NEAR(pattern.mass.front(), adductMz(m, adduct), 1e-9);
  }
  EXPECT_EQ(ionAtoms(atomsOf("C6H12O6"), readAdduct("[M-H2O-H2O-H2O-H2O-H2O-H2O-H2O+H]+")).error,
            "the adduct removes more H than the molecule has");
  EXPECT_TRUE(ionAtoms(atomsOf("C6H12O6"), readAdduct("[M-6H2O+H]+")).ok());
}

// Caught a race in the factorials (std::lgamma under tsan): threads get what one thread gets.
TEST_F(Pattern, ThreadsAtOnceGetWhatOneThreadGets) {
  const char *formulas[] = {"C254H377N65O75S6", "Sn2Cl4", "C6H12O6", "CH2Cl2"};
  PatternRequest requests[] = {{}, {PeakGrouping::kFine}, {PeakGrouping::kResolution, 1e5}};
  std::vector<std::vector<double>> alone;
  for (const char *formula : formulas)
    for (const PatternRequest &request : requests) alone.push_back(patternOf(formula, request).fraction);
  std::vector<std::thread> threads;
  std::atomic<int> differing{0};
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      size_t i = 0;
      for (const char *formula : formulas)
        for (const PatternRequest &request : requests)
          if (isotopePattern(atomsOf(formula), request).fraction != alone[i++]) ++differing;
    });
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(differing, 0);
}

TEST_F(Pattern, RefusesWhatItCannotCompute) {
  const char *tooMany = "the pattern has more than 1000 peaks; leave out more of the small ones";
  const std::pair<PatternRequest, const char *> cases[] = {
      {{PeakGrouping::kResolution, 0}, "resolution must be a number above 0"},
      {{PeakGrouping::kResolution, NAN}, "resolution must be a number above 0"},
      {{PeakGrouping::kFine, 0, 0}, "min-relative must be above 0 and at most 100"},
      {{PeakGrouping::kNominal, 0, 101}, "min-relative must be above 0 and at most 100"},
      {{PeakGrouping::kFine, 0, 1, 1.5}, "coverage must be above 0 and at most 1"},
      {{PeakGrouping::kFine, 0, 1e-6, 0, true, 1000}, tooMany},
      {{PeakGrouping::kResolution, 1e6, 1, 0, true, 1000}, tooMany},
  };
  for (const auto &[request, error] : cases)
    EXPECT_EQ(isotopePattern(atomsOf("C100H200Sn10"), request).error, error);
  EXPECT_EQ(isotopePattern({{"C", 99, 1}}, {}).error, "'99C' is not in the element table");
  // Ten thousand tin atoms spread over thousands of mass numbers: refused, not computed for minutes.
  EXPECT_EQ(isotopePattern(atomsOf("Sn10000"), {}).error, "too many Sn atoms for a nominal pattern");
}

// --svg draws the peaks under the formula and its ion, beside the table.
TEST(PatternTool, SvgBesideTheTable) {
  TempDir empty;
  auto drawn = runTool({"pattern", "--charge", "-2", "--coverage", "0.5", "--svg", "w.svg", "H2O"},
                       "", empty.path());
  EXPECT_EQ(drawn.out, "formula\tmz\tfraction\trelative\nH2O\t9.005831\t0.997340572\t100.0000\n");
  std::string svg = readText(empty.path() + "/w.svg");
  EXPECT_NE(svg.find(">H2O 2-</text>"), std::string::npos);
  EXPECT_NE(svg.find(">9.0058</text>"), std::string::npos);
  auto unwritable = runTool({"pattern", "--svg", "no/such/dir/w.svg", "H2O"}, "", empty.path());
  EXPECT_EQ(unwritable.status, 1);
  EXPECT_EQ(unwritable.err, "fskit pattern: cannot write no/such/dir/w.svg: No such file or directory\n");
}

}  // namespace
