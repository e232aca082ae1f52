// SPDX-License-Identifier: MIT
// Ions of a molecule: the adduct notation "[nM+A-B]z+" / "z-" and a plain
// charge, with their m/z from monoisotopic masses (not exported).
//
// Adduct text, without white space:
//   "[" [n] "M" { ("+" | "-") [count] FORMULA } "]" [z] ("+" | "-")
// n (molecules), count and z default to 1; each is a positive decimal number
// of at most kMaxFormulaCount. FORMULA is read with readFormulaText and ends
// at the next "+", "-" or "]" outside square brackets ("[M+[13C]H3]+").
// Leading digits of a term are its count, so an isotope there needs
// brackets. Examples: "[M+H]+", "[M+2H]2+", "[2M+Na]+", "[M-H2O+H]+",
// "[M-H]-", "[M]+" (the molecule having lost an electron).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "chemistry/formula_text_internal.h"

namespace fskit::chemistry {

// The electron's mass in Da (CODATA 2018).
inline constexpr double kElectronMass = 0.000548579909;

struct Adduct {
  int64_t molecules = 1;             // n of "[nM...]"
  int32_t charge = 0;                // signed: +2 for "2+", -1 for "-"
  std::vector<FormulaAtom> added;    // every "+" term times its count, summed
  std::vector<FormulaAtom> removed;  // every "-" term times its count, summed
  double addedMass = 0.0;            // monoisotopic mass of `added`
  double removedMass = 0.0;          // monoisotopic mass of `removed`
  // Empty on success; else e.g. "expected 'M' at position 1".
  std::string error;
  size_t errorPosition = 0;  // the 0-based byte the error names
  bool ok() const { return error.empty(); }
};

// Reads adduct text (null reads as empty) against the present element table,
// loading the default one when none is present. A formula's error names its
// position in the whole adduct text. Throws nothing but std::bad_alloc.
Adduct readAdduct(const char *text);

// m/z of the ion `adduct` makes of a molecule of monoisotopic mass
// `molecule`: (n*M + added - removed - z*me) / |z|. NaN when adduct is not ok.
double adductMz(double molecule, const Adduct &adduct);

// m/z of a molecule of mass `molecule` that carries the signed charge
// `charge` itself: (M - z*me) / |z|. NaN for charge 0.
double chargedMz(double molecule, int32_t charge);

}  // namespace fskit::chemistry
