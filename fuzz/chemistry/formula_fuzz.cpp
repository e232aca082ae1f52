// SPDX-License-Identifier: MIT
// The formula parsers on any text: what fsTblParseMF stores agrees with the shipped table and
// parses again to the same; fsTblParseMFRange's tokens, written back, parse to the same tokens.
#include <fskit/chemistry.h>
#include <fskit/frame.h>

#include <array>
#include <cmath>
#include <regex>

#include "fuzz/support/fuzz_support.h"

namespace {

using Symbols = std::vector<std::array<char, 10>>;

struct Merged {
  int32_t result = 0;
  std::string text;
  int32_t nominal = 0;
  double mono = 0, average = 0, rdb = 0;
  Symbols symbols;
  std::vector<int32_t> counts, atomicNumbers, shifts;
};

Merged parseMerged(const char *formula, int32_t separated, int32_t dotAll, int32_t maxTokens) {
  const size_t room = maxTokens > 0 ? size_t(maxTokens) : 100;
  Merged out;
  out.symbols.resize(room);
  for (auto *v : {&out.counts, &out.atomicNumbers, &out.shifts}) v->resize(room);
  Text text(20 * room + 1, '~');  // 20 bytes a symbol suffice
  out.result = fsTblParseMF(formula, separated, dotAll, text.get(), &out.nominal, &out.mono,
                            &out.average, &out.rdb, maxTokens,
                            reinterpret_cast<char(*)[10]>(out.symbols.data()), out.counts.data(),
                            out.atomicNumbers.data(), out.shifts.data());
  out.text = text.str();
  FUZZ_CHECK(out.result <= int32_t(room));
  return out;
}

bool near(double a, double b) { return std::fabs(a - b) <= 1e-12 * std::fmax(std::fabs(a), std::fabs(b)); }

std::string withoutDots(std::string text) {
  std::erase(text, '.');
  return text;
}

void checkMerged(const Text &formula, uint8_t options) {
  const int32_t separated = options & 1, dotAll = options >> 1 & 1, maxTokens = options >> 2;
  const Merged merged = parseMerged(formula.get(), separated, dotAll, maxTokens);
  if (merged.result <= 0) {
    // Refused: minus the characters read, nothing written.
    FUZZ_CHECK(-int64_t(merged.result) <= int64_t(formula.str().size()));
    FUZZ_CHECK(merged.text.empty() && merged.nominal == 0 && merged.mono == 0 && merged.rdb == 1);
    // Nothing at all: only dots, white space and marks without a symbol.
    FUZZ_CHECK(merged.result < 0 || formula.str().find_first_not_of(". \t\n\v\f\r!") == std::string::npos);
    return;
  }
  FUZZ_CHECK(merged.text.size() <= 20 * size_t(merged.result));
  int64_t nominal = 0;
  double mono = 0, average = 0, rdb = 1;
  for (int32_t i = 0; i < merged.result; ++i) {
    const char *symbol = merged.symbols[size_t(i)].data();
    FsElementRecord record;
    const int32_t index = fsFindElement(symbol, &record);
    FUZZ_CHECK(index >= 0 && merged.counts[size_t(i)] >= 1);
    for (int32_t j = 0; j < i; ++j) FUZZ_CHECK(std::strcmp(merged.symbols[size_t(j)].data(), symbol) != 0);
    FUZZ_CHECK(merged.atomicNumbers[size_t(i)] == record.atomicNumber);
    FUZZ_CHECK(merged.shifts[size_t(i)] == record.isotopeShift);
    const int64_t count = merged.counts[size_t(i)];
    nominal += count * record.nominalMass;
    mono += double(count) * record.monoMass;
    average += double(count) * record.averageMass;
    rdb += double(count * record.rdbFactor) * 0.5;
  }
  FUZZ_CHECK(merged.nominal == int32_t(std::min<int64_t>(nominal, INT32_MAX)));
  FUZZ_CHECK(near(merged.mono, mono) && near(merged.average, average) && merged.rdb == rdb);

  // With every count written out, and dotted (else "CO" after an isotope is cobalt), the formula
  // parses the same, unless an isotope's digits read as the count before the dot ("H.2H" is H3).
  std::string explicitCounts;  // "C6 H12 O6 "
  for (int32_t i = 0; i < merged.result; ++i)
    explicitCounts += std::string(merged.symbols[size_t(i)].data()) + std::to_string(merged.counts[size_t(i)]) + " ";
  static const std::regex countAcrossDot("[^0-9]\\.[0-9]");  // a dot after a symbol, then digits
  const Merged dotted = parseMerged(formula.get(), separated, 1, maxTokens);
  FUZZ_CHECK(dotted.result == merged.result && withoutDots(dotted.text) == withoutDots(merged.text));
  for (const std::string *text : {&std::as_const(explicitCounts), &dotted.text}) {
    if (text == &dotted.text && std::regex_search(dotted.text, countAcrossDot)) continue;
    const Merged again = parseMerged(text->c_str(), 0, 1, maxTokens);
    FUZZ_CHECK(again.result == merged.result && again.text == dotted.text);
    FUZZ_CHECK(again.nominal == merged.nominal && again.rdb == merged.rdb);
    FUZZ_CHECK(near(again.mono, merged.mono) && near(again.average, merged.average));
  }
}

struct Tokens {
  int32_t result = 0;
  Symbols symbols;
  std::vector<int32_t> low, high, atomicNumbers, shifts, flags;
  bool operator==(const Tokens &) const = default;
};

Tokens parseTokens(const char *formula, int32_t separated, int32_t maxTokens) {
  const size_t room = maxTokens > 0 ? size_t(maxTokens) : 100;
  Tokens out;
  out.symbols.resize(room);
  for (auto *v : {&out.low, &out.high, &out.atomicNumbers, &out.shifts, &out.flags}) v->resize(room);
  out.result = fsTblParseMFRange(formula, separated, maxTokens,
                                 reinterpret_cast<char(*)[10]>(out.symbols.data()), out.low.data(),
                                 out.high.data(), out.atomicNumbers.data(), out.shifts.data(),
                                 out.flags.data());
  FUZZ_CHECK(out.result < int32_t(room));
  // Only the accepted tokens count.
  const size_t used = size_t(std::max(out.result, 0));
  out.symbols.resize(used);
  for (auto *v : {&out.low, &out.high, &out.atomicNumbers, &out.shifts, &out.flags}) v->resize(used);
  return out;
}

void checkTokens(const Text &formula, uint8_t options) {
  const int32_t separated = options & 1, maxTokens = options >> 2;
  const Tokens tokens = parseTokens(formula.get(), separated, maxTokens);
  if (tokens.result <= 0) return;
  std::string written;
  for (size_t k = 0; k < size_t(tokens.result); ++k) {
    FsElementRecord record;
    FUZZ_CHECK(fsFindElement(tokens.symbols[k].data(), &record) >= 0);
    FUZZ_CHECK(tokens.atomicNumbers[k] == record.atomicNumber && tokens.shifts[k] == record.isotopeShift);
    FUZZ_CHECK(1 <= tokens.low[k] && tokens.low[k] <= tokens.high[k]);
    FUZZ_CHECK(tokens.flags[k] >= 0 && tokens.flags[k] <= 3);
    written += (tokens.flags[k] & 2 ? "!" : "") + std::string(tokens.symbols[k].data()) +
               (tokens.flags[k] & 1 ? "*" : "") + std::to_string(tokens.low[k]) +
               (tokens.high[k] != tokens.low[k] ? "_" + std::to_string(tokens.high[k]) : "") + " ";
  }
  FUZZ_CHECK(parseTokens(written.c_str(), 1, maxTokens) == tokens);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  fsRegisterMessage(nullptr);  // refused symbols are reported; expected here
  FUZZ_CHECK(fsLoadElemTable(FSKIT_SOURCE_DIR "/data/kw_elements.tbl") == 1);
  return 0;
}

// Input: one byte (bit 0: separated, bit 1: dotAll, the rest: maxTokens), then the formula.
FUZZ_TARGET(input) {
  const uint8_t options = takeByte(input);
  const Text formula(input);
  checkMerged(formula, options);
  checkTokens(formula, options);
}
