// SPDX-License-Identifier: MIT
// pattern() and Formula.pattern(): the isotope pattern of a molecule or of
// an ion of it, with the choices of `fskit pattern`, as numpy arrays in an
// fskit.IsotopePattern.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "chemistry/isotope_pattern_internal.h"
#include "python/src/bindings.h"
#include "python/src/errors.h"
#include "python/src/formula.h"
#include "python/src/ion.h"

namespace py = pybind11;

namespace fskit::python {
namespace {

struct PatternChoice {
  std::optional<std::string> grouping;
  std::optional<double> resolution, minRelative, coverage;
  std::optional<std::string> adduct;
  std::optional<int64_t> charge;
};

[[noreturn]] void refuse(const std::string &text) {
  raiseBuiltin(PyExc_ValueError, "pattern(): " + text);
}

// The request the arguments make; ValueError for what `fskit pattern`
// refuses as a usage error.
chemistry::PatternRequest requestOf(const PatternChoice &choice) {
  chemistry::PatternRequest request;
  std::string grouping = choice.grouping.value_or(choice.resolution ? "resolution" : "nominal");
  if (grouping == "fine") {
    request.grouping = chemistry::PeakGrouping::kFine;
  } else if (grouping == "resolution") {
    request.grouping = chemistry::PeakGrouping::kResolution;
  } else if (grouping != "nominal") {
    refuse("grouping must be 'nominal', 'resolution' or 'fine', not '" + grouping + "'");
  }
  if (choice.resolution && grouping != "resolution")
    refuse("give grouping='" + grouping + "' or a resolution, not both");
  if (grouping == "resolution") {
    if (!choice.resolution) refuse("grouping='resolution' needs resolution=R");
    if (!(*choice.resolution > 0.0 && std::isfinite(*choice.resolution)))
      refuse("resolution must be a number above 0");
    request.resolution = *choice.resolution;
  }
  if (choice.minRelative && choice.coverage) refuse("give min_relative or coverage, not both");
  if (choice.minRelative) {
    if (!(*choice.minRelative > 0.0 && *choice.minRelative <= 100.0))
      refuse("min_relative must be a percent above 0 and at most 100");
    request.minRelative = *choice.minRelative;
  }
  if (choice.coverage) {
    if (!(*choice.coverage > 0.0 && *choice.coverage <= 1.0))
      refuse("coverage must be a fraction above 0 and at most 1 (e.g. 0.999)");
    request.coverage = *choice.coverage;
  }
  return request;
}

std::string textOf(const Formula &formula) { return formula.text; }
std::string textOf(const py::object &formula) { return py::str(formula); }

py::array_t<double> arrayOf(const std::vector<double> &values) {
  return py::array_t<double>(py::ssize_t(values.size()), values.data());
}

template <typename Source>
py::object pattern(const Source &formula, const PatternChoice &choice) {
  std::vector<chemistry::FormulaAtom> atoms = formulaAtoms(formula);
  std::string text = textOf(formula);
  chemistry::PatternRequest request = requestOf(choice);
  IonChoice ion = readIon(choice.adduct, choice.charge, false, "pattern()");
  if (ion.adduct) {
    chemistry::IonAtoms made = chemistry::ionAtoms(atoms, *ion.adduct);
    if (!made.ok()) {
      std::string message = made.error + " in " + *choice.adduct + " of '" + text + "'";
      raise("FormulaError", py::make_tuple(message, text, "", -1));
    }
    atoms = std::move(made.atoms);
  }
  chemistry::IsotopePattern peaks;
  {
    py::gil_scoped_release unlocked;
    peaks = chemistry::isotopePattern(atoms, request);
    if (peaks.ok() && ion.charge != 0) chemistry::toMz(peaks, ion.charge);
  }
  if (!peaks.ok()) raiseBuiltin(PyExc_ValueError, peaks.error + " ('" + text + "')");
  py::object type = py::module_::import("fskit._chemistry").attr("IsotopePattern");
  return type(arrayOf(peaks.mass), arrayOf(peaks.fraction), peaks.largest, ion.charge, text,
              choice.adduct);
}

constexpr const char *kPatternDoc = R"(

grouping: "nominal" (the default: one peak per mass number, at the mean
mass of its isotopologues), "fine" (every isotopologue a peak) or
"resolution" (each isotopologue joins the nearest more probable one within
m/R of it), which resolution=R alone also chooses. min_relative (default 0.01) leaves out the
peaks below that percent of the largest; coverage (e.g. 0.999) keeps instead
the fewest peaks whose fractions add up to it. adduct ("[M+H]+") or charge
(a signed integer) gives the pattern of that ion, in m/z; neither gives the
molecule's masses in Da. These choices are those of `fskit pattern`: a wrong
or conflicting one raises ValueError, an adduct that does not read or
removes more than the molecule has raises FormulaError.

Returns an fskit.IsotopePattern: numpy arrays mz, fraction and relative
(100 * fraction / the largest fraction), by increasing m/z; len() peaks;
plot() draws it with matplotlib.)";

template <typename Target, typename Source, typename... Leading>
void definePattern(Target &target, const std::string &doc, Leading... leading) {
  target.def(
      "pattern",
      [](const Source &formula, std::optional<std::string> grouping,
         std::optional<double> resolution, std::optional<double> minRelative,
         std::optional<double> coverage, std::optional<std::string> adduct,
         std::optional<int64_t> charge) {
        return pattern(formula, {std::move(grouping), resolution, minRelative, coverage,
                                 std::move(adduct), charge});
      },
      leading..., py::arg("grouping") = py::none(), py::kw_only(),
      py::arg("resolution") = py::none(), py::arg("min_relative") = py::none(),
      py::arg("coverage") = py::none(), py::arg("adduct") = py::none(),
      py::arg("charge") = py::none(), (doc + kPatternDoc).c_str());
}

}  // namespace

void addIsotopePattern(py::module_ &module) {
  definePattern<py::module_, py::object>(module, R"(The isotope pattern of `formula`.

`formula` is a str read as the richer formula text ("C6H12O6", "(CH3)3COH",
"CuSO4*5H2O", "[13C]2C4H12O6"; case-sensitive, no blanks), or an
fskit.Formula; a text that does not read raises FormulaError naming the
position.)", py::arg("formula"));
  auto formula = py::reinterpret_borrow<py::class_<Formula>>(module.attr("Formula"));
  definePattern<py::class_<Formula>, Formula>(
      formula,
      "The isotope pattern of this formula's atoms (of its canonical text; fskit.pattern() "
      "reads the richer formula text).");
}

}  // namespace fskit::python
