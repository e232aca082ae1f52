// SPDX-License-Identifier: MIT
// composition() and Formula.composition(): each element's share of the
// average mass, the rounded percents adding up to exactly 100.
#include <pybind11/pybind11.h>

#include <string>
#include <vector>

#include "chemistry/composition_internal.h"
#include "python/src/bindings.h"
#include "python/src/errors.h"
#include "python/src/formula.h"

namespace py = pybind11;

namespace fskit::python {
namespace {

constexpr double kStepsPerPercent = double(chemistry::kPercentSteps / 100);

// `formula` names the formula in an error.
py::list shares(const std::vector<chemistry::FormulaAtom> &atoms, const std::string &formula) {
  chemistry::MassComposition composition;
  {
    py::gil_scoped_release unlocked;
    composition = chemistry::massComposition(atoms);
  }
  if (!composition.ok)  // the element table changed since the text was read
    raise("FormulaError",
          py::make_tuple("the element table has no mass for an atom of '" + formula + "'",
                         formula, "", -1));
  py::object share = py::module_::import("fskit._chemistry").attr("ElementShare");
  py::list result;
  for (const chemistry::ElementShare &element : composition.elements)
    result.append(share(element.label, element.count, element.mass,
                        double(element.percentSteps) / kStepsPerPercent, element.percent,
                        element.percentSteps));
  return result;
}

constexpr const char *kReturns = R"(

Returns one fskit.ElementShare (a named tuple: label, count, mass, percent,
exact_percent, percent_steps) per element or isotope label, in order of
first appearance; pandas.DataFrame(result) makes a table of it. `mass` is
the average mass of those atoms (a labelled isotope's exact mass), `percent`
the share of the formula's average mass rounded to 4 decimals, such that the
percents add up to 100 (exactly in `percent_steps`, units of 0.0001 %, which
add up to 1000000; each is less than 0.0001 from `exact_percent`).)";

}  // namespace

void addComposition(py::module_ &module) {
  module.def(
      "composition",
      [](const py::object &formula) {
        return shares(formulaAtoms(formula), std::string(py::str(formula)));
      },
      py::arg("formula"),
      (std::string(R"(The elemental composition of `formula` by mass.

`formula` is a str read as the richer formula text ("C6H12O6",
"(CH3)3COH", "CuSO4*5H2O", "[13C]2C4H12O6"; case-sensitive, no blanks), or
an fskit.Formula. A text that does not read raises FormulaError naming the
position.)") + kReturns).c_str());
  auto formula = py::reinterpret_borrow<py::class_<Formula>>(module.attr("Formula"));
  formula.def(
      "composition",
      [](const Formula &self) { return shares(formulaAtoms(self), self.text); },
      (std::string("The elemental composition by mass of this formula's atoms (of its "
                   "canonical text; fskit.composition() reads the richer formula text).") +
       kReturns).c_str());
}

}  // namespace fskit::python
