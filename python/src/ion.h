// SPDX-License-Identifier: MIT
// The ion arguments of mz() and pattern(): an adduct text or a charge.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "chemistry/ion_internal.h"

namespace fskit::python {

struct IonChoice {
  std::optional<chemistry::Adduct> adduct;  // read from the adduct text given
  int32_t charge = 0;  // signed: the adduct's, or the one given; 0: neither given
};

// Reads `adduct` or takes `charge` (not both; `required`: one of them).
// Raises FormulaError for an adduct that does not read, ValueError for a
// charge of 0 or beyond kMaxFormulaCount and for a wrong choice; `caller`
// ("mz()") begins the latter messages.
IonChoice readIon(const std::optional<std::string> &adduct, const std::optional<int64_t> &charge,
                  bool required, const char *caller);

}  // namespace fskit::python
