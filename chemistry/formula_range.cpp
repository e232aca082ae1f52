// SPDX-License-Identifier: MIT
// fsTblParseMFRange: one entry per token, with count ranges and marks.
#include <cstring>
#include <utility>

#include <fskit/frame.h>

#include "chemistry/chemistry.h"

using namespace fskit::chemistry;

extern "C" FSKIT_API int32_t fsTblParseMFRange(const char *formula, int32_t separated,
                                               int32_t maxTokens, char symbols[][10],
                                               int32_t *lowCounts, int32_t *highCounts,
                                               int32_t *atomicNumbers, int32_t *isotopeShifts,
                                               int32_t *flags) {
  int32_t limit = tokenLimit(maxTokens);
  if (formula == nullptr || formula[0] == '\0') return 0;
  size_t position = 0;
  int32_t count = 0;
  // One table for the whole call, even while another thread loads a new one.
  TableReader reader;
  for (;;) {
    FormulaToken token;
    position = scanFormulaToken(formula, position, separated != 0, false, token);
    if (token.lowCount > token.highCount) std::swap(token.lowCount, token.highCount);
    if (symbols != nullptr) std::memcpy(symbols[count], token.symbol, sizeof token.symbol);
    int32_t record = findLabel(reader, token.symbol);
    if (record < 0) {
      fsMessage("fsTblParseMFRange", 1, 0, "<%s> is an invalid symbol", token.symbol);
      return refusedAt(position);
    }
    const FsElementRecord &element = reader.table().records[record];
    if (lowCounts != nullptr) lowCounts[count] = token.lowCount;
    if (highCounts != nullptr) highCounts[count] = token.highCount;
    if (atomicNumbers != nullptr) atomicNumbers[count] = element.atomicNumber;
    if (isotopeShifts != nullptr) isotopeShifts[count] = element.isotopeShift;
    if (flags != nullptr) flags[count] = (token.exclamation ? 2 : 0) + (token.star ? 1 : 0);
    if (++count >= limit) {
      fsMessage("fsTblParseMFRange", 1, 0, "Exceeding number of tokens expected");
      return 0;
    }
    if (formula[position] == '\0') return count;
  }
}
