// SPDX-License-Identifier: MIT
// The one way the package reports a formula that fsTblParseMF refused.
#pragma once

#include <cstdint>
#include <string>

namespace fskit::python {

// Raises FormulaError for `formula`, which fsTblParseMF refused with
// `result` (0: empty; below 0: a symbol not in the table), naming the
// symbol and where it begins, with the library's messages of the call.
[[noreturn]] void refuseFormula(const std::string &formula, int32_t result);

}  // namespace fskit::python
