// SPDX-License-Identifier: MIT
// mz(): the m/z of an ion of a formula, and the ion arguments it shares
// with pattern().
#include "python/src/ion.h"

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <vector>

#include "python/src/bindings.h"
#include "python/src/errors.h"
#include "python/src/formula.h"

namespace py = pybind11;

namespace fskit::python {

IonChoice readIon(const std::optional<std::string> &adduct, const std::optional<int64_t> &charge,
                  bool required, const char *caller) {
  std::string name = caller;
  if (adduct && charge)
    raiseBuiltin(PyExc_ValueError, name + " takes an adduct or a charge, not both");
  IonChoice ion;
  if (charge) {
    if (*charge == 0) raiseBuiltin(PyExc_ValueError, name + ": the charge cannot be 0");
    if (*charge < -chemistry::kMaxFormulaCount || *charge > chemistry::kMaxFormulaCount)
      raiseBuiltin(PyExc_ValueError, name + ": charge " + std::to_string(*charge) + " too large");
    ion.charge = int32_t(*charge);
  } else if (adduct) {
    if (adduct->find('\0') != std::string::npos)
      refuseText("unexpected character NUL", adduct->find('\0'), *adduct, "adduct");
    ion.adduct = chemistry::readAdduct(adduct->c_str());
    if (!ion.adduct->ok())
      refuseText(ion.adduct->error, ion.adduct->errorPosition, *adduct, "adduct");
    ion.charge = ion.adduct->charge;
  } else if (required) {
    raiseBuiltin(PyExc_ValueError, name + " needs an adduct such as '[M+H]+' or a charge");
  }
  return ion;
}

namespace {

double mz(const py::object &formula, const std::optional<std::string> &adduct,
          const std::optional<int64_t> &charge) {
  std::vector<chemistry::FormulaAtom> atoms = formulaAtoms(formula);
  IonChoice ion = readIon(adduct, charge, true, "mz()");
  chemistry::FormulaMasses masses = chemistry::formulaMasses(atoms);
  if (!masses.ok)  // the element table changed since the text was read
    raiseBuiltin(PyExc_ValueError, "the element table has no mass for an atom of '" +
                                       std::string(py::str(formula)) + "'");
  return ion.adduct ? chemistry::adductMz(masses.monoisotopic, *ion.adduct)
                    : chemistry::chargedMz(masses.monoisotopic, ion.charge);
}

}  // namespace

void addMz(py::module_ &module) {
  module.def("mz", &mz, py::arg("formula"), py::arg("adduct") = py::none(), py::kw_only(),
             py::arg("charge") = py::none(),
             R"(The m/z of an ion of `formula`, from monoisotopic masses.

mz("C6H12O6", "[M+Na]+") for an adduct ("[M+H]+", "[M+2H]2+", "[2M+Na]+",
"[M-H2O+H]+", "[M-H]-"; electrons counted: (n*M + added - removed -
z*me) / |z|), or mz("C6H12O6", charge=2) for the molecule carrying the
signed charge itself: (M - z*me) / |z|. Give exactly one of the two.

`formula` is a str read as the richer formula text ("(CH3)3COH",
"CuSO4*5H2O", "[13C]2C4H12O6"; case-sensitive, no blanks), or an
fskit.Formula. A formula or adduct that does not read raises FormulaError
(a ValueError) naming the position in that text (`formula` holds the
text); a wrong choice of arguments or a charge of 0 raises ValueError.)");
}

}  // namespace fskit::python
