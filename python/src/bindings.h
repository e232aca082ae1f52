// SPDX-License-Identifier: MIT
// The parts of the module, each adding its functions and classes.
#pragma once

#include <pybind11/pybind11.h>

namespace fskit::python {

void addNumbers(pybind11::module_ &module);
void addChemistry(pybind11::module_ &module);
void addMasses(pybind11::module_ &module);
// After addChemistry: addComposition and addIsotopePattern add methods to
// Formula too.
void addComposition(pybind11::module_ &module);
void addMz(pybind11::module_ &module);
void addIsotopePattern(pybind11::module_ &module);
void addIniFile(pybind11::module_ &module);
void addDates(pybind11::module_ &module);
void addSortFile(pybind11::module_ &module);

}  // namespace fskit::python
