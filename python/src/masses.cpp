// SPDX-License-Identifier: MIT
// masses(): the masses of many formulas from a list, a tuple or a numpy
// string array. The formulas are taken a chunk at a time with the
// interpreter lock held and parsed without it, so that each formula's text
// is read from memory once, while it is still in the cache.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <fskit/chemistry.h>

#include "python/src/bindings.h"
#include "python/src/errors.h"
#include "python/src/formula_error.h"
#include "python/src/messages.h"

namespace py = pybind11;

namespace fskit::python {
namespace {

constexpr size_t kChunk = 4096;

// The formulas as NUL-terminated texts, a range at a time. Texts of str
// items are the items' own UTF-8, the items held for the while; those of
// numpy arrays are copied. A text that is not ASCII, or holds a NUL, cannot
// be a formula: its entry is null.
class FormulaSource {
 public:
  explicit FormulaSource(const py::handle &formulas) {
    if (py::isinstance<py::array>(formulas)) {
      py::array array = py::reinterpret_borrow<py::array>(formulas);
      char kind = array.dtype().kind();
      if (kind == 'U' || kind == 'S') {
        array_ = py::array::ensure(array, py::array::c_style);
        fromArray_ = true;
        size_ = size_t(array_.size());
        return;
      }
      if (kind != 'O')
        raiseBuiltin(PyExc_TypeError, "masses() takes strings, not a numpy array of " +
                                          std::string(py::str(array.dtype())));
    }
    if (py::isinstance<py::str>(formulas) || py::isinstance<py::bytes>(formulas))
      raiseBuiltin(PyExc_TypeError, "masses() takes a sequence of formulas, not one formula");
    sequence_ = py::reinterpret_steal<py::object>(
        PySequence_Fast(formulas.ptr(), "masses() takes a list, tuple or array of formulas"));
    if (!sequence_) throw py::error_already_set();
    size_ = size_t(PySequence_Fast_GET_SIZE(sequence_.ptr()));
  }
  ~FormulaSource() { drop(); }
  FormulaSource(const FormulaSource &) = delete;
  FormulaSource &operator=(const FormulaSource &) = delete;

  size_t size() const { return size_; }

  // texts[0 .. count) for formulas [start, start + count), valid until the
  // next fill. Interpreter lock held.
  void fill(size_t start, size_t count, const char **texts) {
    drop();
    if (fromArray_) fillFromArray(start, count, texts);
    else fillFromSequence(start, count, texts);
  }

  // Formula `i` as given, for an error message. Interpreter lock held.
  std::string text(size_t i) const {
    py::object item = fromArray_ ? py::object(array_[py::int_(i)])
                             : py::reinterpret_borrow<py::object>(
                                   PySequence_Fast_GET_ITEM(sequence_.ptr(), Py_ssize_t(i)));
    return py::isinstance<py::bytes>(item) ? std::string(py::bytes(item)) : std::string(py::str(item));
  }

 private:
  void drop() {
    for (PyObject *item : held_) Py_DECREF(item);
    held_.clear();
  }

  void fillFromSequence(size_t start, size_t count, const char **texts) {
    // Another thread may change a list while a chunk is parsed.
    if (size_t(PySequence_Fast_GET_SIZE(sequence_.ptr())) < start + count)
      raiseBuiltin(PyExc_RuntimeError, "the list of formulas changed size during masses()");
    PyObject **items = PySequence_Fast_ITEMS(sequence_.ptr());
    for (size_t j = 0; j < count; ++j) {
      PyObject *item = items[start + j];
      const char *text = nullptr;
      Py_ssize_t length = 0;
      if (PyUnicode_Check(item)) {
        text = PyUnicode_AsUTF8AndSize(item, &length);
        if (text == nullptr) throw py::error_already_set();
        if (!PyUnicode_IS_ASCII(item)) text = nullptr;
      } else if (PyBytes_Check(item)) {
        text = PyBytes_AS_STRING(item);
        length = PyBytes_GET_SIZE(item);
      } else {
        raiseBuiltin(PyExc_TypeError, "formula " + std::to_string(start + j) + " is a " +
                                          std::string(Py_TYPE(item)->tp_name) + ", not a str");
      }
      Py_INCREF(item);
      held_.push_back(item);
      texts[j] = text != nullptr && std::strlen(text) == size_t(length) ? text : nullptr;
    }
  }

  void fillFromArray(size_t start, size_t count, const char **texts) {
    const char *data = static_cast<const char *>(array_.data());
    size_t width = size_t(array_.itemsize());
    bool wide = array_.dtype().kind() == 'U';  // 4-byte code points
    copies_.clear();
    std::vector<size_t> starts(count);
    std::vector<bool> readable(count);
    for (size_t j = 0; j < count; ++j) {
      const char *item = data + (start + j) * width;
      starts[j] = copies_.size();
      bool ascii = true;
      if (wide) {
        for (size_t k = 0; k + 4 <= width; k += 4) {
          uint32_t c;
          std::memcpy(&c, item + k, 4);
          if (c == 0) break;
          ascii = ascii && c < 128;
          copies_.push_back(char(c));
        }
      } else {
        copies_.append(item, strnlen(item, width));
      }
      copies_.push_back('\0');
      readable[j] = ascii;
    }
    for (size_t j = 0; j < count; ++j) texts[j] = readable[j] ? copies_.c_str() + starts[j] : nullptr;
  }

  py::object sequence_;
  py::array array_;  // a default py::array is an empty array, not null: hence the flag
  bool fromArray_ = false;
  size_t size_ = 0;
  std::vector<PyObject *> held_;
  std::string copies_;
};

struct Results {
  int32_t *nominal;
  double *mono, *average, *rdb;
};

// Parses texts[0 .. count) into the results at `at`; the index of the first
// refused one (with fsTblParseMF's result), or `count`.
size_t parseRange(const char *const *texts, size_t count, const Results &out, size_t at,
                  int32_t &refusal) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  size_t firstBad = count;
  for (size_t j = 0; j < count; ++j) {
    size_t i = at + j;
    int32_t result = texts[j] == nullptr
                         ? -1
                         : fsTblParseMF(texts[j], 0, 0, nullptr, &out.nominal[i], &out.mono[i],
                                        &out.average[i], &out.rdb[i], 0, nullptr, nullptr,
                                        nullptr, nullptr);
    if (result > 0) [[likely]]
      continue;
    if (firstBad == count) {
      firstBad = j;
      refusal = texts[j] == nullptr ? 1 : result;  // 1: not a text of a formula
    }
    out.nominal[i] = -1;
    out.mono[i] = out.average[i] = out.rdb[i] = kNaN;
  }
  return firstBad;
}

[[noreturn]] void refuseAt(const FormulaSource &source, size_t index, int32_t refusal) {
  std::string text = source.text(index);
  std::string where = "formula " + std::to_string(index);
  if (refusal == 1) {
    forwardLibraryMessages();
    raise("FormulaError",
          py::make_tuple(where + " ('" + text + "') holds a character no formula has", text, "", -1));
  }
  try {
    refuseFormula(text, refusal);
  } catch (py::error_already_set &error) {
    py::object exception = error.value();  // the index goes in front of the parser's words
    exception.attr("args") = py::make_tuple(where + ": " + std::string(py::str(exception)));
    throw;
  }
}

py::tuple masses(const py::handle &formulas, const std::string &errors) {
  if (errors != "raise" && errors != "nan")
    raiseBuiltin(PyExc_ValueError, "errors must be 'raise' or 'nan', not '" + errors + "'");
  FormulaSource source(formulas);
  size_t n = source.size();
  py::array_t<int32_t> nominal(n);
  py::array_t<double> mono(n), average(n), rdb(n);
  Results out{nominal.mutable_data(), mono.mutable_data(), average.mutable_data(),
              rdb.mutable_data()};
  size_t firstBad = n;
  int32_t refusal = 0;
  const char *texts[kChunk];
  for (size_t start = 0; start < n; start += kChunk) {
    size_t count = std::min(kChunk, n - start);
    source.fill(start, count, texts);
    size_t bad;
    int32_t chunkRefusal = 0;
    {
      py::gil_scoped_release unlocked;
      bad = parseRange(texts, count, out, start, chunkRefusal);
    }
    if (bad < count && firstBad == n) {
      firstBad = start + bad;
      refusal = chunkRefusal;
      if (errors == "raise") break;
    }
  }
  if (firstBad < n && errors == "raise") refuseAt(source, firstBad, refusal);
  forwardLibraryMessages();
  return py::make_tuple(nominal, mono, average, rdb);
}

// What a C program takes for the same result: the formulas as C texts
// already, the result arrays allocated for each run as masses() allocates
// its arrays. Best of `repeats`; for the benchmark.
double parseLoopSeconds(const py::handle &formulas, int repeats, bool threadTime) {
  FormulaSource source(formulas);
  size_t n = source.size();
  std::vector<const char *> texts(n);
  source.fill(0, n, texts.data());
  py::object clock = py::module_::import("time").attr(threadTime ? "thread_time" : "perf_counter");
  double best = std::numeric_limits<double>::infinity();
  for (int r = 0; r < repeats; ++r) {
    double start = clock().cast<double>();
    {
      py::gil_scoped_release unlocked;
      std::unique_ptr<int32_t[]> nominal(new int32_t[n]);
      std::unique_ptr<double[]> mono(new double[n]), average(new double[n]), rdb(new double[n]);
      int32_t refusal;
      parseRange(texts.data(), n, {nominal.get(), mono.get(), average.get(), rdb.get()}, 0, refusal);
    }
    best = std::min(best, clock().cast<double>() - start);
  }
  forwardLibraryMessages();
  return best;
}

}  // namespace

void addMasses(py::module_ &module) {
  module.def("_masses", &masses, py::arg("formulas"), py::arg("errors") = "raise",
             "Masses of many formulas: (nominal, monoisotopic, average, rdb) arrays. "
             "Use fskit.masses().");
  module.def("_parse_loop_seconds", &parseLoopSeconds, py::arg("formulas"), py::arg("repeats") = 3,
             py::arg("thread_time") = false,
             "Seconds the library's own loop over the formulas takes (best of `repeats`, by "
             "time.perf_counter or time.thread_time); for the benchmark.");
}

}  // namespace fskit::python
