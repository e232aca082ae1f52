// SPDX-License-Identifier: MIT
// fskit.Formula as the module holds it, and the atoms of a formula argument
// of the functions that read the richer formula text (composition, mz,
// pattern).
#pragma once

#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "chemistry/formula_text_internal.h"

namespace fskit::python {

// A formula read by the classic parser, fsTblParseMF.
struct Formula {
  std::string formula, text;  // as given; canonical
  int32_t nominal = 0;
  double mono = 0, average = 0, rdb = 0;
  std::vector<std::pair<std::string, int32_t>> counts;
};

// The atoms of `formula`: a str read with readFormulaText, or a Formula's
// canonical text, which that reader takes as the classic parser wrote it.
// Raises FormulaError when the text does not read, TypeError for other types.
std::vector<chemistry::FormulaAtom> formulaAtoms(const pybind11::handle &formula);
std::vector<chemistry::FormulaAtom> formulaAtoms(const Formula &formula);

// Raises FormulaError for `text` (UTF-8), which readFormulaText or
// readAdduct refused with `error`, naming byte `position`: the message and
// the error's position count characters; `noun` ("adduct") goes before the
// quoted text.
[[noreturn]] void refuseText(const std::string &error, size_t position, const std::string &text,
                             const char *noun);

}  // namespace fskit::python
