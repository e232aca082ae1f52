// SPDX-License-Identifier: MIT
// The classes are looked up when raised, not kept: the module holds no Python
// objects of its own that would outlive the interpreter.
#include "python/src/errors.h"

namespace py = pybind11;

namespace fskit::python {

void raise(const char *name, py::tuple args) {
  py::object type = py::module_::import("fskit._errors").attr(name);
  py::object error = type(*args);
  PyErr_SetObject(type.ptr(), error.ptr());
  throw py::error_already_set();
}

void raiseBuiltin(PyObject *type, const std::string &text) {
  PyErr_SetString(type, text.c_str());
  throw py::error_already_set();
}

void raiseOSError(int error, const std::string &text, const std::string &path) {
  // OSError picks its subclass from the error number (FileNotFoundError...).
  py::object exception = py::reinterpret_borrow<py::object>(PyExc_OSError)(error, text, path);
  PyErr_SetObject(reinterpret_cast<PyObject *>(Py_TYPE(exception.ptr())), exception.ptr());
  throw py::error_already_set();
}

}  // namespace fskit::python
