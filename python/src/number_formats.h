// SPDX-License-Identifier: MIT
// The number formats as Python sees them: names, numpy dtypes and the text
// of decode() and encode().
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string>

#include "numformat/arrays_internal.h"

namespace fskit::python {

// The format of that name; ValueError naming every format when there is none.
const numformat::ArrayFormat &formatNamed(const std::string &name);
// The numpy dtype of the values (a packed record for quorrec).
pybind11::dtype hostDtype(const numformat::ArrayFormat &format);
pybind11::dict formatInfo(const std::string &name);
pybind11::tuple formatNames();
// Docstrings, made once.
const char *decodeDoc();
const char *encodeDoc();

}  // namespace fskit::python
