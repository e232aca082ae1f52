// SPDX-License-Identifier: MIT
// Molecular formulas and the element table: Formula, the bulk masses() over
// a list or a numpy string array, and the table's records.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <fskit/chemistry.h>

#include "chemistry/formula_internal.h"
#include "python/src/bindings.h"
#include "python/src/errors.h"
#include "python/src/messages.h"

namespace py = pybind11;

namespace fskit::python {
namespace {

// Room for the canonical text of the parser's 100 distinct symbols.
constexpr size_t kTextSize = 20 * chemistry::kFormulaEntries + 1;

struct Formula {
  std::string formula, text;
  int32_t nominal = 0;
  double mono = 0, average = 0, rdb = 0;
  std::vector<std::pair<std::string, int32_t>> counts;
};

[[noreturn]] void refuse(const std::string &formula, int32_t result) {
  std::string messages = forwardLibraryMessages();
  if (result == 0)
    raise("FormulaError", py::make_tuple("empty formula", formula, "", -1));
  auto [symbol, position] = chemistry::refusedSymbol(formula.c_str(), result);
  std::string text = "unknown element symbol '" + symbol + "' at position " +
                     std::to_string(position) + " of '" + formula + "'";
  if (!messages.empty()) text += " (" + messages + ")";
  raise("FormulaError", py::make_tuple(text, formula, symbol, position));
}

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
  if (result <= 0) refuse(formula, result);
  forwardLibraryMessages();
  parsed.text = text;
  for (int32_t i = 0; i < result; ++i) parsed.counts.emplace_back(symbols[i], counts[i]);
  return parsed;
}

// The formulas of a list, tuple or numpy string array, each NUL-terminated
// in one block, so that the parsing runs without the interpreter lock. A
// text that is not ASCII cannot be a formula and is kept as "" marked bad.
struct FormulaBlock {
  std::string bytes;
  std::vector<size_t> starts;
  std::vector<bool> unreadable;

  void add(const char *text, size_t length, bool readable = true) {
    starts.push_back(bytes.size());
    unreadable.push_back(!readable || std::memchr(text, '\0', length) != nullptr);
    if (readable) bytes.append(text, length);
    bytes.push_back('\0');
  }
  const char *at(size_t i) const { return bytes.c_str() + starts[i]; }
};

void addFixedWidth(FormulaBlock &block, const py::array &array) {
  py::array contiguous = py::array::ensure(array, py::array::c_style);
  const char *data = static_cast<const char *>(contiguous.data());
  size_t width = size_t(contiguous.itemsize()), n = size_t(contiguous.size());
  bool wide = contiguous.dtype().kind() == 'U';  // 4-byte code points
  std::string text;
  for (size_t i = 0; i < n; ++i, data += width) {
    text.clear();
    bool ascii = true;
    if (wide) {
      for (size_t k = 0; k + 4 <= width; k += 4) {
        uint32_t c;
        std::memcpy(&c, data + k, 4);
        if (c == 0) break;
        ascii = ascii && c < 128;
        text.push_back(char(c));
      }
    } else {
      text.assign(data, strnlen(data, width));
    }
    block.add(text.data(), text.size(), ascii);
  }
}

FormulaBlock collectFormulas(const py::handle &formulas) {
  FormulaBlock block;
  if (py::isinstance<py::array>(formulas)) {
    py::array array = py::reinterpret_borrow<py::array>(formulas);
    char kind = array.dtype().kind();
    if (kind == 'U' || kind == 'S') {
      addFixedWidth(block, array);
      return block;
    }
    if (kind != 'O') raiseBuiltin(PyExc_TypeError, "masses() takes strings, not a numpy array of " +
                                                      std::string(py::str(array.dtype())));
  }
  if (py::isinstance<py::str>(formulas) || py::isinstance<py::bytes>(formulas))
    raiseBuiltin(PyExc_TypeError, "masses() takes a sequence of formulas, not one formula");
  py::sequence sequence = py::isinstance<py::sequence>(formulas)
                              ? py::reinterpret_borrow<py::sequence>(formulas)
                              : py::sequence(py::list(py::reinterpret_borrow<py::object>(formulas)));
  size_t n = py::len(sequence);
  block.starts.reserve(n);
  block.unreadable.reserve(n);
  for (size_t i = 0; i < n; ++i) {
    py::object item = sequence[i];
    Py_ssize_t length = 0;
    if (PyUnicode_Check(item.ptr())) {
      const char *text = PyUnicode_AsUTF8AndSize(item.ptr(), &length);
      if (text == nullptr) throw py::error_already_set();
      block.add(text, size_t(length), PyUnicode_IS_ASCII(item.ptr()));
    } else if (PyBytes_Check(item.ptr())) {
      block.add(PyBytes_AS_STRING(item.ptr()), size_t(PyBytes_GET_SIZE(item.ptr())));
    } else {
      raiseBuiltin(PyExc_TypeError, "formula " + std::to_string(i) + " is a " +
                                        std::string(py::str(item.get_type().attr("__name__"))) +
                                        ", not a str");
    }
  }
  return block;
}

// masses(formulas, errors): nominal, monoisotopic and average masses and the
// ring-plus-double-bond values of each formula, as arrays.
py::tuple masses(const py::handle &formulas, const std::string &errors) {
  if (errors != "raise" && errors != "nan")
    raiseBuiltin(PyExc_ValueError, "errors must be 'raise' or 'nan', not '" + errors + "'");
  FormulaBlock block = collectFormulas(formulas);
  size_t n = block.starts.size();
  py::array_t<int32_t> nominal(n);
  py::array_t<double> mono(n), average(n), rdb(n);
  int32_t *nominalOut = nominal.mutable_data();
  double *monoOut = mono.mutable_data(), *averageOut = average.mutable_data(),
         *rdbOut = rdb.mutable_data();
  size_t firstBad = n;
  int32_t firstResult = 0;
  {
    py::gil_scoped_release unlocked;
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    for (size_t i = 0; i < n; ++i) {
      int32_t result = block.unreadable[i] ? -1
                       : fsTblParseMF(block.at(i), 0, 0, nullptr, &nominalOut[i], &monoOut[i],
                                      &averageOut[i], &rdbOut[i], 0, nullptr, nullptr, nullptr,
                                      nullptr);
      if (result > 0) [[likely]]
        continue;
      if (firstBad == n) {
        firstBad = i;
        firstResult = result;
      }
      nominalOut[i] = -1;
      monoOut[i] = averageOut[i] = rdbOut[i] = kNaN;
    }
  }
  if (firstBad < n && errors == "raise") {
    py::object item = py::isinstance<py::array>(formulas) || py::isinstance<py::sequence>(formulas)
                          ? py::reinterpret_borrow<py::object>(formulas)[py::int_(firstBad)]
                          : py::object(py::str(block.at(firstBad)));
    std::string text = py::isinstance<py::bytes>(item) ? std::string(py::bytes(item))
                                                        : std::string(py::str(item));
    if (block.unreadable[firstBad]) {
      forwardLibraryMessages();
      raise("FormulaError", py::make_tuple("formula " + std::to_string(firstBad) + " ('" + text +
                                               "') holds a character no formula has",
                                           text, "", -1));
    }
    try {
      refuse(text, firstResult);
    } catch (py::error_already_set &error) {
      // The index goes in front of the parser's words.
      py::object exception = error.value();
      std::string said = py::str(exception);
      exception.attr("args") = py::make_tuple("formula " + std::to_string(firstBad) + ": " + said);
      throw;
    }
  }
  forwardLibraryMessages();
  return py::make_tuple(nominal, mono, average, rdb);
}

// The C loop that masses() wraps, over the same block, for the benchmark.
double parseLoopSeconds(const py::handle &formulas, int repeats, bool threadTime) {
  FormulaBlock block = collectFormulas(formulas);
  size_t n = block.starts.size();
  std::vector<int32_t> nominal(n);
  std::vector<double> mono(n), average(n), rdb(n);
  py::object clock = py::module_::import("time").attr(threadTime ? "thread_time" : "perf_counter");
  double best = std::numeric_limits<double>::infinity();
  for (int r = 0; r < repeats; ++r) {
    double start = clock().cast<double>();
    {
      py::gil_scoped_release unlocked;
      for (size_t i = 0; i < n; ++i)
        fsTblParseMF(block.at(i), 0, 0, nullptr, &nominal[i], &mono[i], &average[i], &rdb[i], 0,
                     nullptr, nullptr, nullptr, nullptr);
    }
    best = std::min(best, clock().cast<double>() - start);
  }
  forwardLibraryMessages();
  return best;
}

bool loadElements(const std::string &path) {
  int32_t loaded;
  {
    py::gil_scoped_release unlocked;
    loaded = fsLoadElemTable(path.c_str());
  }
  std::string messages = forwardLibraryMessages();
  if (loaded == 1 && fsElementTableCount() > 0) return true;
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

  module.def("_masses", &masses, py::arg("formulas"), py::arg("errors") = "raise",
             "Masses of many formulas: (nominal, monoisotopic, average, rdb) arrays. "
             "Use fskit.masses().");
  module.def("_parse_loop_seconds", &parseLoopSeconds, py::arg("formulas"), py::arg("repeats") = 3,
             py::arg("thread_time") = false,
             "Seconds the library's own loop over the formulas takes (best of `repeats`, by "
             "time.perf_counter or time.thread_time); for the benchmark.");
  module.def("_load_elements", &loadElements, py::arg("path"),
             "Loads the element file `path`. Use fskit.load_elements().");
  module.def("_element_records", &elementRecords,
             "The records of the element table as tuples. Use fskit.elements().");
}

}  // namespace fskit::python
