// SPDX-License-Identifier: MIT
// The formula parser's details for fskit's Python package (not installed,
// not exported): how many entries fsTblParseMF fills by default, and which
// symbol made it refuse a formula.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace fskit::chemistry {

// The entries (distinct symbols) fsTblParseMF fills with maxTokens 0; its
// canonical text then needs at most 20 bytes per entry and a NUL.
inline constexpr int32_t kFormulaEntries = 100;

struct RefusedSymbol {
  std::string symbol;  // its first 9 characters, as the parser compares them
  size_t position;     // where it begins in the formula
};

// The symbol that fsTblParseMF refused when it returned `result` (below 0:
// minus the characters read up to the end of that symbol's token).
RefusedSymbol refusedSymbol(const char *formula, int32_t result);

}  // namespace fskit::chemistry
