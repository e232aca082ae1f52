// SPDX-License-Identifier: MIT
// Molecular formulas and the element table: Formula, the bulk masses() over
// a list or a numpy string array, and the table's records.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fskit/chemistry.h>

#include "chemistry/element_load_internal.h"
#include "chemistry/formula_internal.h"
#include "python/src/bindings.h"
#include "python/src/errors.h"
#include "python/src/formula.h"
#include "python/src/formula_error.h"
#include "python/src/messages.h"

namespace py = pybind11;

namespace fskit::python {
namespace {

// Room for the canonical text of the parser's 100 distinct symbols.
constexpr size_t kTextSize = 20 * chemistry::kFormulaEntries + 1;

}  // namespace

void refuseFormula(const std::string &formula, int32_t result) {
  std::string messages = forwardLibraryMessages();
  if (result == 0)
    raise("FormulaError", py::make_tuple("empty formula", formula, "", -1));
  auto [symbol, position] = chemistry::refusedSymbol(formula.c_str(), result);
  std::string text = "unknown element symbol '" + symbol + "' at position " +
                     std::to_string(position) + " of '" + formula + "'";
  if (!messages.empty()) text += " (" + messages + ")";
  raise("FormulaError", py::make_tuple(text, formula, symbol, position));
}

namespace {

Formula parseFormula(const std::string &formula) {
  Formula parsed;
  parsed.formula = formula;
  if (formula.find('\0') != std::string::npos)
    raise("FormulaError", py::make_tuple("a formula cannot hold a NUL character", formula, "",
                                         int(formula.find('\0'))));
  char text[kTextSize] = "";
  char symbols[chemistry::kFormulaEntries][10];
  int32_t counts[chemistry::kFormulaEntries];
  int32_t result;
  {
    py::gil_scoped_release unlocked;
    result = fsTblParseMF(formula.c_str(), 0, 0, text, &parsed.nominal, &parsed.mono,
                          &parsed.average, &parsed.rdb, 0, symbols, counts, nullptr, nullptr);
  }
  if (result <= 0) refuseFormula(formula, result);
  forwardLibraryMessages();
  parsed.text = text;
  for (int32_t i = 0; i < result; ++i) parsed.counts.emplace_back(symbols[i], counts[i]);
  return parsed;
}

bool loadElements(const std::string &path) {
  bool loaded;
  {
    py::gil_scoped_release unlocked;
    loaded = chemistry::loadElementFileKeepingTable(path.c_str());
  }
  std::string messages = forwardLibraryMessages();
  if (loaded) return true;
  raise("ElementTableError",
        py::make_tuple(messages.empty() ? "cannot load the element file " + path : messages));
}

py::list elementRecords() {
  py::list records;
  int32_t count = fsElementTableCount();
  for (int32_t i = 0; i < count; ++i) {
    FsElementRecord record;
    if (fsGetElementInfo(i, &record) != 1) break;
    std::string label(record.label, strnlen(record.label, sizeof record.label));
    records.append(py::make_tuple(std::string(record.symbol), label, record.atomicNumber,
                                  record.nominalMass, record.monoMass, record.averageMass,
                                  record.abundance, record.isotopeShift != 0, record.rdbFactor));
  }
  forwardLibraryMessages();
  return records;
}

}  // namespace

void addChemistry(py::module_ &module) {
  py::class_<Formula>(module, "Formula", R"(A molecular formula, parsed against the element table.

Formula("C6H12O6"), also "c6h12o6", "C5 13C H12 O6" or "NA.CL" (a blank or
"." between symbols makes each letter pair one symbol). Equal symbols are
merged. A symbol that is not in the table raises FormulaError (a ValueError)
naming the symbol and its position; so does an empty formula.)")
      .def(py::init(&parseFormula), py::arg("formula"), "Parses `formula`.")
      .def_readonly("formula", &Formula::formula, "The text given.")
      .def_readonly("text", &Formula::text,
                    "The canonical formula, its symbols in element-table order.")
      .def_readonly("nominal_mass", &Formula::nominal,
                    "Sum of the counts times each symbol's nominal (integer) mass.")
      .def_readonly("monoisotopic_mass", &Formula::mono,
                    "Sum of the exact masses of each element's reference isotope.")
      .def_readonly("average_mass", &Formula::average, "Sum of the average (chemical) masses.")
      .def_readonly("rdb", &Formula::rdb,
                    "Rings plus double bonds: 1 + sum(count * (valence - 2)) / 2.")
      .def_property_readonly(
          "counts",
          [](const Formula &formula) {
            py::dict counts;
            for (const auto &[symbol, count] : formula.counts) counts[py::str(symbol)] = count;
            return counts;
          },
          "Element counts: {symbol: count}, in order of first appearance.")
      .def("__str__", [](const Formula &formula) { return formula.text; })
      .def("__repr__",
           [](const Formula &formula) { return "Formula('" + formula.formula + "')"; })
      .def("__eq__",
           [](const Formula &a, const Formula &b) { return a.text == b.text; })
      .def("__hash__", [](const Formula &formula) { return py::hash(py::str(formula.text)); });

  module.def("_load_elements", &loadElements, py::arg("path"),
             "Loads the element file `path`. Use fskit.load_elements().");
  module.def("_element_records", &elementRecords,
             "The records of the element table as tuples. Use fskit.elements().");
}

}  // namespace fskit::python
