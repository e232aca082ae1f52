// SPDX-License-Identifier: MIT
// Which symbol a refused formula stumbled on: the tokens are read again, as
// fsTblParseMF read them, up to the place where it stopped.
#include <cstring>

#include "chemistry/chemistry.h"
#include "chemistry/formula_internal.h"

namespace fskit::chemistry {

static_assert(kFormulaEntries == kDefaultTokens);

RefusedSymbol refusedSymbol(const char *formula, int32_t result) {
  size_t consumed = size_t(-int64_t(result)), length = std::strlen(formula);
  bool separated = std::strpbrk(formula, ". ") != nullptr;  // as the parser decides
  size_t position = 0, start = 0;
  FormulaToken token{};
  while (position < consumed && position < length) {
    start = position;
    position = scanFormulaToken(formula, position, separated, true, token);
  }
  while (start < length && (formula[start] == ' ' || formula[start] == '.')) ++start;
  return {token.symbol, start};
}

}  // namespace fskit::chemistry
