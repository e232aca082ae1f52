// SPDX-License-Identifier: MIT
// The richer formula text of the pattern, ion and composition commands (not
// exported; the classic fsTblParseMF keeps its own reading):
//   C6H12O6          element symbols with counts
//   (CH3)3COH        groups in round brackets with a count, nested
//   CuSO4*5H2O       parts joined by "*" or the middle dot (UTF-8 C2 B7),
//                    each but the first with an optional leading count
//   [13C]2C4H12O6    an isotope in square brackets, with a count
//   13CH4, C5.13CH12 an isotope label as the classic parser writes it: at the
//                    start of the formula or after "."
// After "*" leading digits are the part's count, so an isotope there needs
// brackets or a ".". Symbols are case-sensitive (a capital, then small
// letters). White space is not allowed anywhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fskit::chemistry {

// Every count, also multiplied through groups and parts and summed per
// element, stays at or below this: the product of two such values fits in
// int64_t, and every total in int32_t.
inline constexpr int64_t kMaxFormulaCount = 1'000'000'000;

// Groups nest at most this deep (the reader recurses once per level).
inline constexpr int kMaxGroupDepth = 32;

struct FormulaAtom {
  std::string symbol;   // the element's symbol, e.g. "C"
  int32_t massNumber;   // 0: natural abundance; else the isotope, e.g. 13
  int64_t count;
  bool operator==(const FormulaAtom &) const = default;
};

struct FormulaComposition {
  // Atoms in order of first appearance, repeats summed; empty on error.
  std::vector<FormulaAtom> atoms;
  // Empty on success; else e.g. "unknown element 'Xx' at position 4".
  std::string error;
  size_t errorPosition = 0;  // the 0-based byte the error names
  bool ok() const { return error.empty(); }
};

// Reads `text` (null reads as empty) against the present element table,
// loading the default one when none is present, as fsTblParseMF does.
// Throws nothing but std::bad_alloc.
FormulaComposition readFormulaText(const char *text);

struct FormulaMasses {
  double monoisotopic = 0.0;  // reference isotopes' masses, or the labelled ones'
  double average = 0.0;       // natural averages; a labelled isotope's exact mass
  bool ok = false;            // false: an atom the present table lacks
};

// The masses of `atoms` from the element table: the same per-record masses
// fsTblParseMF sums.
FormulaMasses formulaMasses(const std::vector<FormulaAtom> &atoms);

}  // namespace fskit::chemistry
