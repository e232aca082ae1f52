// SPDX-License-Identifier: MIT
// Raising the package's exceptions (fskit._errors) from C++.
#pragma once

#include <pybind11/pybind11.h>

#include <string>

namespace fskit::python {

// Raises fskit._errors.<name>(args...): the exception is made by calling the
// class, so its own constructor fills its attributes.
[[noreturn]] void raise(const char *name, pybind11::tuple args);

// Raises the built-in exception class `type` (PyExc_OSError and so on) with
// `text`, or with errno's text and `text` as file name when `error` is set.
[[noreturn]] void raiseBuiltin(PyObject *type, const std::string &text);
[[noreturn]] void raiseOSError(int error, const std::string &text, const std::string &path);

}  // namespace fskit::python
