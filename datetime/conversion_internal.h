// SPDX-License-Identifier: MIT
// fsDateTime as an internal C++ interface, for fskit's Python package: the
// same conversion, with its messages handed back instead of printed.
#pragma once

#include <cstdint>
#include <string>

namespace fskit::datetime {

// Converts as fsDateTime does. With `problems` null the messages go to
// standard error exactly as fsDateTime prints them; otherwise they are
// appended to *problems (same bytes, line ends included) and nothing is
// printed.
int32_t convertDateTime(int32_t inLayout, const char *input, int32_t outLayout, char *output,
                        const char *separators, int32_t useNow, std::string *problems);

}  // namespace fskit::datetime
