// SPDX-License-Identifier: MIT
// The extension module fskit._fskit. The Python files of the package import
// it, load the element table shipped beside it and wrap a few results.
#include <pybind11/pybind11.h>

#include "python/src/bindings.h"
#include "python/src/messages.h"

PYBIND11_MODULE(_fskit, module) {
  module.doc() =
      "fskit's library, linked into this module: foreign number formats over whole "
      "arrays, molecular formulas, lossless INI files, date layouts and the file sort. "
      "Use it through the package fskit.";
  fskit::python::captureLibraryMessages();
  fskit::python::addNumbers(module);
  fskit::python::addChemistry(module);
  fskit::python::addMasses(module);
  fskit::python::addComposition(module);
  fskit::python::addMz(module);
  fskit::python::addIsotopePattern(module);
  fskit::python::addIniFile(module);
  fskit::python::addDates(module);
  fskit::python::addSortFile(module);
}
