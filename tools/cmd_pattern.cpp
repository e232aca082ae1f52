// SPDX-License-Identifier: MIT
// fskit pattern: the isotope pattern of molecules and their ions.
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "chemistry/isotope_pattern_internal.h"
#include "tools/command.h"
#include "tools/element_choice.h"
#include "tools/pattern_svg.h"
#include "tools/write_file.h"

namespace fskit::tool {
namespace {

constexpr const char *kCommand = "pattern";

// The whole of `text` as a number; nullopt when it is not one.
template <typename Number>
std::optional<Number> numberOf(const std::string &text) {
  Number value{};
  const char *begin = text.c_str(), *end = begin + text.size();
  if (!text.empty() && text.front() == '+' && text.size() > 1 && text[1] != '-') ++begin;
  auto [at, error] = std::from_chars(begin, end, value);
  if (error != std::errc() || at != end) return std::nullopt;
  return value;
}

struct PatternOptions {
  chemistry::PatternRequest request;
  std::optional<std::string> adduct;
  int32_t charge = 0;
  bool json = false;
  std::optional<std::string> svg;
};

// Takes the pattern's options from args. kOk, or the usage error reported.
int takeOptions(std::vector<std::string> &args, PatternOptions &options) {
  bool missing = false;
  options.json = takeFlag(args, "--json");
  bool fine = takeFlag(args, "--fine");
  options.adduct = takeOption(args, "--adduct", missing);
  std::optional<std::string> charge = takeOption(args, "--charge", missing);
  std::optional<std::string> resolution = takeOption(args, "--resolution", missing);
  std::optional<std::string> minRelative = takeOption(args, "--min-relative", missing);
  std::optional<std::string> coverage = takeOption(args, "--coverage", missing);
  options.svg = takeOption(args, "--svg", missing);
  if (missing) return usageError(kCommand, "an option is missing its value");
  if (options.adduct && charge) return usageError(kCommand, "give --adduct or --charge, not both");
  if (resolution && fine) return usageError(kCommand, "give --resolution or --fine, not both");
  if (minRelative && coverage)
    return usageError(kCommand, "give --min-relative or --coverage, not both");
  chemistry::PatternRequest &request = options.request;
  if (charge) {
    std::optional<int32_t> z = numberOf<int32_t>(*charge);
    if (!z || *z == 0) return usageError(kCommand, "--charge needs a signed integer other than 0");
    options.charge = *z;
  }
  if (fine) request.grouping = chemistry::PeakGrouping::kFine;
  if (resolution) {
    std::optional<double> r = numberOf<double>(*resolution);
    if (!r || !(*r > 0) || !std::isfinite(*r))
      return usageError(kCommand, "--resolution needs a number above 0");
    request.grouping = chemistry::PeakGrouping::kResolution;
    request.resolution = *r;
  }
  if (minRelative) {
    std::optional<double> p = numberOf<double>(*minRelative);
    if (!p || !(*p > 0 && *p <= 100))
      return usageError(kCommand, "--min-relative needs a percent above 0 and at most 100");
    request.minRelative = *p;
  }
  if (coverage) {
    std::optional<double> p = numberOf<double>(*coverage);
    if (!p || !(*p > 0 && *p <= 1))
      return usageError(kCommand, "--coverage needs a fraction above 0 and at most 1 (e.g. 0.999)");
    request.coverage = *p;
  }
  return kOk;
}

// "%.9g": nine significant digits.
std::string significant(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.9g", value);
  return text;
}

// The pattern of one formula, as m/z when an ion was asked for; false with
// the failure reported.
bool patternOf(const std::string &formula, const PatternOptions &options,
               const chemistry::Adduct &adduct, chemistry::IsotopePattern &pattern) {
  chemistry::FormulaComposition read = chemistry::readFormulaText(formula.c_str());
  if (!read.ok()) {
    failure(kCommand, read.error + " of '" + formula + "'");
    return false;
  }
  std::vector<chemistry::FormulaAtom> atoms = std::move(read.atoms);
  int32_t charge = options.charge;
  if (options.adduct) {
    chemistry::IonAtoms ion = chemistry::ionAtoms(atoms, adduct);
    if (!ion.ok()) {
      failure(kCommand, ion.error + " in " + *options.adduct + " of '" + formula + "'");
      return false;
    }
    atoms = std::move(ion.atoms);
    charge = adduct.charge;
  }
  pattern = chemistry::isotopePattern(atoms, options.request);
  if (!pattern.ok()) {
    failure(kCommand, pattern.error + " ('" + formula + "')");
    return false;
  }
  if (charge != 0) chemistry::toMz(pattern, charge);
  return true;
}

// The picture's title: the formula and the ion ("C6H12O6 [M+H]+", "C6H12O6 2+").
std::string titleOf(const std::string &formula, const PatternOptions &options) {
  if (options.adduct) return formula + " " + *options.adduct;
  if (options.charge == 0) return formula;
  int32_t size = options.charge < 0 ? -options.charge : options.charge;
  return formula + " " + (size == 1 ? "" : std::to_string(size)) + (options.charge < 0 ? "-" : "+");
}

// Draws the pattern into options.svg; kOk, or the failure reported.
int drawPattern(const std::string &formula, const PatternOptions &options,
                const chemistry::IsotopePattern &pattern) {
  PatternPicture picture{titleOf(formula, options), pattern.mass, {}};
  for (double f : pattern.fraction) picture.relative.push_back(100.0 * f / pattern.largest);
  if (std::optional<std::string> error = writeWholeFile(*options.svg, patternSvg(picture)))
    return failure(kCommand, *error);
  return kOk;
}

}  // namespace

int runPattern(std::vector<std::string> &args) {
  PatternOptions options;
  if (int status = takeOptions(args, options); status != kOk) return status;
  TableChoice choice;
  if (int status = takeTableChoice(kCommand, args, choice); status != kOk) return status;
  if (args.empty()) return usageError(kCommand, "no formula given");
  if (int status = formulasFromStandardInput(kCommand, args); status != kOk) return status;
  if (options.svg && args.size() != 1) return usageError(kCommand, "--svg draws one formula");
  if (int status = loadElementTable(kCommand, choice); status != kOk) return status;
  chemistry::Adduct adduct;
  if (options.adduct) {
    adduct = chemistry::readAdduct(options.adduct->c_str());
    if (!adduct.ok()) return failure(kCommand, adduct.error + " of adduct '" + *options.adduct + "'");
  }
  Table table(options.json, {{"formula"}, {"mz", true}, {"fraction", true}, {"relative", true}});
  int status = kOk;
  for (const std::string &formula : args) {
    chemistry::IsotopePattern pattern;
    if (!patternOf(formula, options, adduct, pattern)) {
      status = kFailed;
      continue;
    }
    for (size_t i = 0; i < pattern.mass.size(); ++i)
      table.row({formula, fixed(pattern.mass[i], 6), significant(pattern.fraction[i]),
                 fixed(100.0 * pattern.fraction[i] / pattern.largest, 4)});
    if (options.svg && drawPattern(formula, options, pattern) != kOk) status = kFailed;
  }
  return status;
}

}  // namespace fskit::tool
