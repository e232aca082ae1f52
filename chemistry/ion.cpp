// SPDX-License-Identifier: MIT
// readAdduct: the adduct notation read term by term, each formula with
// readFormulaText; adductMz, chargedMz: the ion's m/z.
#include "chemistry/ion_internal.h"

#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

#include "platform/ascii.h"

namespace fskit::chemistry {
namespace {

class AdductReader {
 public:
  explicit AdductReader(std::string_view text) : text_(text) {}

  Adduct read() {
    expect('[', "expected '['");
    if (ok()) result_.molecules = number("count");
    expect('M', "expected 'M'");
    while (ok() && (peek() == '+' || peek() == '-')) readTerm();
    if (ok() && peek() != ']')
      fail(peek() == '\0' ? "unclosed '['" : "expected '+', '-' or ']'",
           peek() == '\0' ? 0 : position_);
    ++position_;
    if (ok()) result_.charge = int32_t(number("charge"));
    if (ok() && peek() != '+' && peek() != '-')
      fail("expected the charge sign '+' or '-'", position_);
    if (ok() && peek() == '-') result_.charge = -result_.charge;
    ++position_;
    if (ok() && position_ < text_.size()) fail("unexpected text after the charge", position_);
    if (ok()) {
      result_.addedMass = formulaMasses(result_.added).monoisotopic;
      result_.removedMass = formulaMasses(result_.removed).monoisotopic;
    } else {
      Adduct failed;
      failed.error = std::move(result_.error);
      failed.errorPosition = result_.errorPosition;
      return failed;
    }
    return std::move(result_);
  }

 private:
  bool ok() const { return result_.ok(); }
  char peek() const { return position_ < text_.size() ? text_[position_] : '\0'; }

  void fail(const std::string &what, size_t at) {
    if (!ok()) return;
    result_.error = what + " at position " + std::to_string(at);
    result_.errorPosition = at;
  }

  void expect(char c, const char *what) {
    if (!ok()) return;
    if (peek() != c) return fail(what, position_);
    ++position_;
  }

  // Digits here as a positive number (`noun` names it in errors); 1 without
  // digits.
  int64_t number(const char *noun) {
    size_t start = position_;
    int64_t value = 0;
    for (; ascii::isDigit(peek()); ++position_)
      if (value <= kMaxFormulaCount) value = value * 10 + (peek() - '0');
    if (position_ == start) return 1;
    if (value == 0) fail(std::string(noun) + " 0", start);
    if (value > kMaxFormulaCount) fail(std::string(noun) + " too large", start);
    return ok() ? value : 1;
  }

  // Where the formula starting here ends: the next "+", "-" or "]" outside
  // square brackets, or the end.
  size_t formulaEnd() const {
    int depth = 0;
    for (size_t at = position_; at < text_.size(); ++at) {
      char c = text_[at];
      if (c == '[') ++depth;
      if (c == ']' && depth-- == 0) return at;
      if (depth == 0 && (c == '+' || c == '-')) return at;
    }
    return text_.size();
  }

  // "+2H" or "-H2O": the sign, a count, a formula.
  void readTerm() {
    bool adding = text_[position_++] == '+';
    size_t start = position_;
    int64_t times = number("count");
    size_t end = formulaEnd();
    if (!ok()) return;
    if (end == position_) return fail("expected a formula", position_);
    FormulaComposition formula =
        readFormulaText(std::string(text_.substr(position_, end - position_)).c_str());
    if (!formula.ok()) {
      // The formula's message, its position moved into the adduct text.
      std::string suffix = " at position " + std::to_string(formula.errorPosition);
      std::string what = formula.error.substr(0, formula.error.size() - suffix.size());
      return fail(what, position_ + formula.errorPosition);
    }
    std::vector<FormulaAtom> &into = adding ? result_.added : result_.removed;
    for (const FormulaAtom &atom : formula.atoms) add(into, atom, times, start);
    position_ = end;
  }

  // Adds atom x times to `into`, refusing totals above kMaxFormulaCount.
  void add(std::vector<FormulaAtom> &into, const FormulaAtom &atom, int64_t times, size_t at) {
    int64_t more = atom.count * times;  // both at most kMaxFormulaCount
    if (more > kMaxFormulaCount) return fail("count too large", at);
    for (FormulaAtom &present : into)
      if (present.symbol == atom.symbol && present.massNumber == atom.massNumber) {
        if (present.count + more > kMaxFormulaCount) return fail("count too large", at);
        present.count += more;
        return;
      }
    into.push_back({atom.symbol, atom.massNumber, more});
  }

  std::string_view text_;
  size_t position_ = 0;
  Adduct result_;
};

}  // namespace

Adduct readAdduct(const char *text) {
  return AdductReader(text != nullptr ? std::string_view(text) : std::string_view()).read();
}

double adductMz(double molecule, const Adduct &adduct) {
  if (!adduct.ok() || adduct.charge == 0) return std::numeric_limits<double>::quiet_NaN();
  double neutral = double(adduct.molecules) * molecule + adduct.addedMass - adduct.removedMass;
  return chargedMz(neutral, adduct.charge);
}

double chargedMz(double molecule, int32_t charge) {
  if (charge == 0) return std::numeric_limits<double>::quiet_NaN();
  return (molecule - double(charge) * kElectronMass) / std::fabs(double(charge));
}

}  // namespace fskit::chemistry
