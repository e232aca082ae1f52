// SPDX-License-Identifier: MIT
// Isotope patterns against an exact expansion of every element's multinomial
// (all configurations, long double), and ions against adductMz.
#include "chemistry/isotope_pattern_internal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "tests/chemistry/formula_text_support.h"

using namespace fskit::chemistry;

namespace {

using Pattern = fskit::chemistry::test::ShippedTableTest;
using fskit::chemistry::test::atomsOf;

struct Isotopologue {
  long double mass, probability;
  long nominal;
};

// The natural isotopes of `symbol` (or the labelled isotope) through the C
// interface: the records after the element's own that have an abundance.
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

// Every configuration of `count` atoms over `isotopes`, multiplied into
// `from`: n!/prod(k!) * prod(p^k), no threshold.
std::vector<Isotopologue> expand(const std::vector<Isotopologue> &from,
                                 const std::vector<Isotopologue> &isotopes, long count) {
  std::vector<Isotopologue> configurations;
  std::vector<long> k(isotopes.size());
  auto place = [&](auto &self, size_t i, long left) -> void {
    if (i + 1 == isotopes.size()) {
      k[i] = left;
      long double p = 1, m = 0;
      long nominal = 0, placed = 0;
      for (size_t j = 0; j < k.size(); ++j)
        for (long a = 0; a < k[j]; ++a) {
          p *= isotopes[j].probability * (long double)(++placed) / (long double)(a + 1);
          m += isotopes[j].mass;
          nominal += isotopes[j].nominal;
        }
      configurations.push_back({m, p, nominal});
      return;
    }
    for (k[i] = 0; k[i] <= left; ++k[i]) self(self, i + 1, left - k[i]);
  };
  place(place, 0, count);
  std::vector<Isotopologue> product;
  for (const Isotopologue &a : from)
    for (const Isotopologue &b : configurations)
      product.push_back({a.mass + b.mass, a.probability * b.probability, a.nominal + b.nominal});
  return product;
}

std::vector<Isotopologue> exactIsotopologues(const char *formula) {
  std::vector<Isotopologue> all{{0, 1, 0}};
  for (const FormulaAtom &atom : atomsOf(formula)) all = expand(all, isotopesOf(atom), long(atom.count));
  return all;
}

// The exact nominal pattern: probability and weighted mean mass per mass number.
std::map<long, Isotopologue> exactNominal(const char *formula) {
  std::map<long, Isotopologue> bins;
  for (const Isotopologue &i : exactIsotopologues(formula)) {
    Isotopologue &bin = bins[i.nominal];
    bin.mass += i.mass * i.probability;
    bin.probability += i.probability;
  }
  for (auto &[nominal, bin] : bins) bin.mass /= bin.probability;
  return bins;
}

IsotopePattern patternOf(const char *formula, PatternRequest request) {
  IsotopePattern pattern = isotopePattern(atomsOf(formula), request);
  EXPECT_TRUE(pattern.ok()) << formula << ": " << pattern.error;
  return pattern;
}

double total(const IsotopePattern &pattern) {
  double sum = 0;
  for (double f : pattern.fraction) sum += f;
  return sum;
}

// Hydrogen, carbon, oxygen (three isotopes), chlorine, sulfur (four), tin
// (ten: its nominal pattern is squared, not walked), a labelled isotope and
// an element without natural abundance.
const char *const kMolecules[] = {"C6H12O6", "CH2Cl2", "C3H7NO2S", "Sn2Cl4", "[13C]2C4H12O6",
                                  "TcO4", "H2O"};

TEST_F(Pattern, NominalAndFineAgreeWithTheExactExpansion) {
  for (const char *formula : kMolecules) {
    SCOPED_TRACE(formula);
    std::map<long, Isotopologue> nominal = exactNominal(formula);
    long double largest = 0;
    for (auto &[n, bin] : nominal) largest = std::max(largest, bin.probability);
    IsotopePattern got = patternOf(formula, {});
    std::vector<Isotopologue> kept;
    long double leftOut = 0;
    for (auto &[n, bin] : nominal) {
      if (bin.probability >= largest * 1e-4L) kept.push_back(bin);
      else leftOut += bin.probability;
    }
    ASSERT_EQ(got.mass.size(), kept.size());
    for (size_t i = 0; i < kept.size(); ++i) {
      EXPECT_NEAR(got.mass[i], double(kept[i].mass), 1e-6) << i;
      EXPECT_NEAR(got.fraction[i], double(kept[i].probability), 1e-9) << i;
    }
    EXPECT_NEAR(total(got) + double(leftOut), 1.0, 1e-9);
    EXPECT_NEAR(got.largest, double(largest), 1e-12);  // valgrind runs long double as double

    // Every isotopologue down to 1e-10 of the largest, one peak each.
    std::vector<Isotopologue> fine = exactIsotopologues(formula);
    long double top = 0;
    for (const Isotopologue &i : fine) top = std::max(top, i.probability);
    std::erase_if(fine, [&](const Isotopologue &i) { return i.probability < top * 1e-10L; });
    std::sort(fine.begin(), fine.end(),
              [](const Isotopologue &a, const Isotopologue &b) { return a.mass < b.mass; });
    IsotopePattern all = patternOf(formula, {PeakGrouping::kFine, 0, 1e-8});
    ASSERT_EQ(all.mass.size(), fine.size());
    for (size_t i = 0; i < fine.size(); ++i) {
      EXPECT_NEAR(all.mass[i], double(fine[i].mass), 1e-6) << i;
      EXPECT_NEAR(all.fraction[i], double(fine[i].probability), 1e-9) << i;
    }
  }
}

TEST_F(Pattern, ResolutionMergesBetweenNominalAndFine) {
  for (const char *formula : kMolecules) {
    SCOPED_TRACE(formula);
    IsotopePattern nominal = patternOf(formula, {});
    IsotopePattern low = patternOf(formula, {PeakGrouping::kResolution, 1000});
    ASSERT_EQ(low.mass.size(), nominal.mass.size());
    for (size_t i = 0; i < low.mass.size(); ++i) {
      EXPECT_NEAR(low.mass[i], nominal.mass[i], 1e-6);
      EXPECT_NEAR(low.fraction[i], nominal.fraction[i], 1e-9);
    }
    IsotopePattern fine = patternOf(formula, {PeakGrouping::kFine});
    IsotopePattern high = patternOf(formula, {PeakGrouping::kResolution, 1e9});
    ASSERT_EQ(high.mass.size(), fine.mass.size());
    for (size_t i = 0; i < high.mass.size(); ++i) EXPECT_NEAR(high.fraction[i], fine.fraction[i], 1e-9);
  }
  // Insulin at R = 10000 (peaks 0.58 Da wide) resolves its nominal masses
  // and nothing within them; its isotopologues below the fine structure's
  // reach still count, at their nominal mass.
  const char *insulin = "C254H377N65O75S6";
  IsotopePattern nominal = patternOf(insulin, {PeakGrouping::kNominal, 0, 1e-6});
  IsotopePattern merged = patternOf(insulin, {PeakGrouping::kResolution, 1e4, 1e-6});
  ASSERT_EQ(merged.mass.size(), nominal.mass.size());
  for (size_t i = 0; i < merged.mass.size(); ++i) {
    EXPECT_NEAR(merged.mass[i], nominal.mass[i], 1e-6);
    EXPECT_NEAR(merged.fraction[i], nominal.fraction[i], 1e-9);
  }
  // Glucose's M+1 at R = 100000 (width 0.0018 Da): 13C (181.06674) and 17O
  // (181.06760) merge, 2H (181.06966) stays apart; M+2 puts 18O (182.06763)
  // and 13C2 (182.07010) apart too.
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
      PatternRequest request{grouping};
      request.coverage = coverage;
      IsotopePattern got = patternOf("C254H377N65O75S6", request);
      double sum = total(got);
      EXPECT_GE(sum, coverage - 1e-12);
      double smallest = *std::min_element(got.fraction.begin(), got.fraction.end());
      EXPECT_LT(sum - smallest, coverage);
      // No peak left out is larger than a kept one.
      request.coverage = 0;
      request.minRelative = 100 * smallest / got.largest;
      IsotopePattern above = patternOf("C254H377N65O75S6", request);
      EXPECT_LE(above.mass.size(), got.mass.size() + 1);
      EXPECT_TRUE(std::is_sorted(got.mass.begin(), got.mass.end()));
    }
  }
}

TEST_F(Pattern, FineStructureOfAProteinAddsUpToItsNominalPattern) {
  // Nominal bins from the fine structure (to all but 1e-12) against the
  // squared and walked nominal distribution of the same molecule.
  const char *insulin = "C254H377N65O75S6";
  PatternRequest fineRequest{PeakGrouping::kFine};
  fineRequest.coverage = 1 - 1e-12;
  IsotopePattern fine = patternOf(insulin, fineRequest);
  IsotopePattern nominal = patternOf(insulin, {PeakGrouping::kNominal, 0, 1e-7});
  std::vector<double> binned(nominal.mass.size()), weighted(nominal.mass.size());
  for (size_t i = 0; i < fine.mass.size(); ++i) {
    auto at = std::min_element(nominal.mass.begin(), nominal.mass.end(), [&](double a, double b) {
      return std::abs(a - fine.mass[i]) < std::abs(b - fine.mass[i]);
    });
    binned[size_t(at - nominal.mass.begin())] += fine.fraction[i];
    weighted[size_t(at - nominal.mass.begin())] += fine.fraction[i] * fine.mass[i];
  }
  for (size_t i = 0; i < nominal.mass.size(); ++i) {
    EXPECT_NEAR(binned[i], nominal.fraction[i], 1e-9) << i;
    if (binned[i] > 1e-6) {
      EXPECT_NEAR(weighted[i] / binned[i], nominal.mass[i], 1e-6) << i;
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
  EXPECT_EQ(ionAtoms(atomsOf("CH4"), readAdduct("[M-H2O+H]+")).error,
            "the adduct removes more O than the molecule has");
  EXPECT_EQ(ionAtoms(atomsOf("C6H12O6"), readAdduct("[M-H2O-H2O-H2O-H2O-H2O-H2O-H2O+H]+")).error,
            "the adduct removes more H than the molecule has");
  EXPECT_TRUE(ionAtoms(atomsOf("C6H12O6"), readAdduct("[M-6H2O+H]+")).ok());
}

// Patterns share only the element table and the built-once factorials:
// threads computing at once get what one thread gets.
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
  struct Case {
    PatternRequest request;
    const char *error;
  } cases[] = {
      {{PeakGrouping::kResolution, 0}, "resolution must be a number above 0"},
      {{PeakGrouping::kResolution, NAN}, "resolution must be a number above 0"},
      {{PeakGrouping::kFine, 0, 0}, "min-relative must be above 0 and at most 100"},
      {{PeakGrouping::kNominal, 0, 101}, "min-relative must be above 0 and at most 100"},
      {{PeakGrouping::kFine, 0, 1, 1.5}, "coverage must be above 0 and at most 1"},
      {{PeakGrouping::kFine, 0, 1e-6, 0, true, 1000},
       "the pattern has more than 1000 peaks; leave out more of the small ones"},
      {{PeakGrouping::kResolution, 1e6, 1, 0, true, 1000},
       "the pattern has more than 1000 peaks; leave out more of the small ones"},
  };
  for (const Case &c : cases) EXPECT_EQ(isotopePattern(atomsOf("C100H200Sn10"), c.request).error, c.error);
  EXPECT_EQ(isotopePattern({{"C", 99, 1}}, {}).error, "'99C' is not in the element table");
  // Ten thousand tin atoms spread over thousands of mass numbers: refused
  // rather than computed for minutes.
  EXPECT_EQ(isotopePattern(atomsOf("Sn10000"), {}).error, "too many Sn atoms for a nominal pattern");
}

}  // namespace
