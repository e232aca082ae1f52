// SPDX-License-Identifier: MIT
// readFormulaText: a recursive-descent reader of the richer formula text,
// checked against the element table; formulaMasses: its masses.
#include "chemistry/formula_text_internal.h"

#include <cstdio>
#include <utility>
#include <string_view>

#include "chemistry/chemistry.h"
#include "platform/ascii.h"

namespace fskit::chemistry {
namespace {

constexpr std::string_view kMiddleDot = "\xC2\xB7";

bool isIsotope(const FsElementRecord &record) {
  return record.isotopeShift != 0;
}

// The record labelled `label`, or -1; labels longer than the table's never match.
int32_t findRecord(TableReader &reader, const std::string &label) {
  return label.size() < FormulaToken::kSymbolSize ? findLabel(reader, label.c_str()) : -1;
}

class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  FormulaComposition read() {
    FormulaComposition result;
    if (text_.empty()) {
      fail("empty formula", 0);
    } else {
      readPart(true);
      while (ok() && position_ < text_.size()) {
        size_t separator = separatorLength();
        if (separator == 0) break;
        position_ += separator;
        readPart(false);
      }
      if (ok() && position_ < text_.size()) stray();
    }
    if (ok()) {
      result.atoms = std::move(atoms_);
    } else {
      result.error = std::move(error_);
      result.errorPosition = errorPosition_;
    }
    return result;
  }

 private:
  bool ok() const { return error_.empty(); }
  char peek() const { return position_ < text_.size() ? text_[position_] : '\0'; }

  void fail(const std::string &what, size_t at) {
    if (!ok()) return;
    error_ = what + " at position " + std::to_string(at);
    errorPosition_ = at;
  }
  void stray() {
    unsigned char c = static_cast<unsigned char>(peek());
    if (c == ')') return fail("unmatched ')'", position_);
    char shown[8];
    if (c >= 0x21 && c < 0x7F)
      std::snprintf(shown, sizeof shown, "%c", c);
    else
      std::snprintf(shown, sizeof shown, "\\x%02X", c);
    fail(std::string("unexpected character '") + shown + "'", position_);
  }

  size_t separatorLength() const {
    if (peek() == '*') return 1;
    return text_.substr(position_).starts_with(kMiddleDot) ? kMiddleDot.size() : 0;
  }

  // Digits here as a count; `fallback` without digits. 0 and values above
  // kMaxFormulaCount are errors.
  int64_t count(int64_t fallback) {
    size_t start = position_;
    int64_t value = 0;
    for (; ascii::isDigit(peek()); ++position_)
      if (value <= kMaxFormulaCount) value = value * 10 + (peek() - '0');
    if (position_ == start) return fallback;
    if (value == 0) fail("count 0", start);
    if (value > kMaxFormulaCount) fail("count too large", start);
    // After an error 1, so that callers' products stay in range.
    return ok() ? value : 1;
  }

  // A part: its leading count (not for the first, where leading digits are
  // an isotope label as the classic parser writes it), then its items.
  void readPart(bool first) {
    size_t start = position_;
    int64_t multiplier = first ? 1 : count(1);
    if (!readItems(multiplier, 0, first) && ok()) fail("empty part", start);
  }

  // Items up to ")", a separator or the end; false if there were none.
  bool readItems(int64_t multiplier, int depth, bool labelAllowed) {
    bool any = false;
    while (ok()) {
      char c = peek();
      if (c == '.') {
        ++position_;
        labelAllowed = true;
        if (!ascii::isUpper(peek()) && !ascii::isDigit(peek()) && peek() != '(' && peek() != '[')
          fail("expected an element symbol", position_);
        continue;
      }
      if (c == '(') {
        readGroup(multiplier, depth);
      } else if (c == '[') {
        readBracketed(multiplier);
      } else if (ascii::isUpper(c) || (labelAllowed && ascii::isDigit(c))) {
        readAtom(multiplier);
      } else {
        if (c != '\0' && c != ')' && separatorLength() == 0) stray();
        return any;
      }
      any = true;
      labelAllowed = false;
    }
    return any;
  }

  void readGroup(int64_t multiplier, int depth) {
    size_t open = position_++;
    if (depth + 1 > kMaxGroupDepth) {
      fail("groups nested deeper than " + std::to_string(kMaxGroupDepth), open);
      return;
    }
    // The group's atoms are added once its count is known.
    std::vector<FormulaAtom> outer = std::move(atoms_);
    atoms_.clear();
    bool any = readItems(1, depth + 1, false);
    if (!ok()) return;
    if (peek() != ')') return fail("unclosed '('", open);
    if (!any) return fail("empty group", open);
    ++position_;
    int64_t times = count(1) * multiplier;
    if (times > kMaxFormulaCount) fail("count too large", open);
    std::vector<FormulaAtom> inner = std::move(atoms_);
    atoms_ = std::move(outer);
    for (const FormulaAtom &atom : inner)
      add(atom.symbol, atom.massNumber, atom.count, times, open);
  }

  // "[13C]": an isotope, then its count.
  void readBracketed(int64_t multiplier) {
    size_t open = position_++;
    if (!ascii::isDigit(peek())) return fail("expected a mass number", position_);
    FormulaAtom atom;
    if (!readLabel(atom)) return;
    if (peek() == '\0') return fail("unclosed '['", open);
    if (peek() != ']') return fail("expected ']'", position_);
    ++position_;
    add(atom.symbol, atom.massNumber, 1, count(1) * multiplier, open);
  }

  // An element symbol or an isotope label, then its count.
  void readAtom(int64_t multiplier) {
    size_t start = position_;
    FormulaAtom atom;
    if (readLabel(atom)) add(atom.symbol, atom.massNumber, 1, count(1) * multiplier, start);
  }

  // An element symbol, or an isotope label (a mass number, then the
  // symbol), found in the table; false after an error.
  bool readLabel(FormulaAtom &atom) {
    size_t start = position_;
    while (ascii::isDigit(peek())) ++position_;
    bool labelled = position_ > start;
    if (!ascii::isUpper(peek())) {
      fail("expected an element symbol", position_);
      return false;
    }
    size_t symbolStart = position_++;
    while (ascii::isLower(peek())) ++position_;
    std::string symbol(text_.substr(symbolStart, position_ - symbolStart));
    // The label as typed: "013C" is no label of the table.
    std::string label(text_.substr(start, position_ - start));
    int32_t record = findRecord(reader_, label);
    const FsElementRecord *found = record >= 0 ? &reader_.table().records[record] : nullptr;
    if (labelled && (found == nullptr || !isIsotope(*found) || symbol != found->symbol))
      fail("unknown isotope '" + label + "'", start);
    else if (found == nullptr)
      fail("unknown element '" + symbol + "'", symbolStart);
    if (!ok()) return false;
    // A label such as "D" may name an isotope by itself.
    atom = {found->symbol, isIsotope(*found) ? found->nominalMass : 0, 1};
    return true;
  }

  // Adds count x times atoms, refusing totals above kMaxFormulaCount. Both
  // factors are at most kMaxFormulaCount, so their product fits in int64_t.
  void add(const std::string &symbol, int32_t massNumber, int64_t count, int64_t times, size_t at) {
    if (!ok()) return;
    int64_t more = count * times;
    if (more > kMaxFormulaCount) return fail("count too large", at);
    for (FormulaAtom &atom : atoms_)
      if (atom.symbol == symbol && atom.massNumber == massNumber) {
        if (atom.count + more > kMaxFormulaCount) return fail("count too large", at);
        atom.count += more;
        return;
      }
    atoms_.push_back({symbol, massNumber, more});
  }

  std::string_view text_;
  size_t position_ = 0;
  TableReader reader_;  // one table for the whole formula
  std::vector<FormulaAtom> atoms_;
  std::string error_;
  size_t errorPosition_ = 0;
};

}  // namespace

FormulaComposition readFormulaText(const char *text) {
  return Reader(text != nullptr ? std::string_view(text) : std::string_view()).read();
}

FormulaMasses formulaMasses(const std::vector<FormulaAtom> &atoms) {
  FormulaMasses masses;
  TableReader reader;
  for (const FormulaAtom &atom : atoms) {
    std::string label = atom.symbol;
    if (atom.massNumber > 0) label.insert(0, std::to_string(atom.massNumber));
    int32_t record = findRecord(reader, label);
    if (record < 0) return FormulaMasses{};
    const FsElementRecord &element = reader.table().records[record];
    masses.monoisotopic += double(atom.count) * element.monoMass;
    masses.average += double(atom.count) * element.averageMass;
  }
  masses.ok = true;
  return masses;
}

}  // namespace fskit::chemistry
