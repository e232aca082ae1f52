// SPDX-License-Identifier: MIT
// scanFormulaToken: the one tokeniser of both formula parsers.
#include <cstdint>

#include "chemistry/chemistry.h"
#include "platform/ascii.h"

namespace fskit::chemistry {
namespace {

class Scanner {
 public:
  Scanner(const char *formula, size_t position, bool blanksAsDots)
      : text_(formula), position_(position), blanksAsDots_(blanksAsDots) {}

  char peek(size_t ahead = 0) const {
    char c = text_[position_ + ahead];
    return blanksAsDots_ && c == ' ' ? '.' : c;
  }
  void step() { ++position_; }
  size_t position() const { return position_; }

  // The value of the digits here, stepping over them; 0 without digits.
  // Counts too large for 32 bits stay at the largest one.
  int32_t number() {
    int64_t value = 0;
    for (; ascii::isDigit(peek()); step())
      if (value <= INT32_MAX) value = value * 10 + (peek() - '0');
    return value > INT32_MAX ? INT32_MAX : int32_t(value);
  }

 private:
  const char *text_;
  size_t position_;
  bool blanksAsDots_;
};

void append(FormulaToken &token, char c) {
  if (token.length < FormulaToken::kSymbolSize - 1) {
    token.symbol[token.length] = c;
    token.symbol[token.length + 1] = '\0';
  }
  ++token.length;
}

// The symbol and its marks. Before the first letter anything but "!", "."
// and white space belongs to the symbol (isotope digits, brackets); the first
// letter is raised, and the symbol ends with a second letter (in separated
// mode; otherwise a capital starts the next symbol), a digit or a "*".
void scanSymbol(Scanner &scan, bool separated, FormulaToken &token, bool &capital) {
  for (char c = scan.peek(); c != '\0'; c = scan.peek()) {
    if (c == '.' || ascii::isSpace(c)) {
      scan.step();
      if (token.length > 0) return;
    } else if (!capital) {
      scan.step();
      if (c == '!') {
        token.exclamation = true;
      } else {
        append(token, ascii::toUpper(c));
        capital = ascii::isAlpha(c);
      }
    } else if (ascii::isUpper(c)) {
      if (separated) {
        append(token, ascii::toLower(c));
        scan.step();
      }
      return;
    } else if (ascii::isDigit(c)) {
      return;
    } else if (c == '*') {
      token.star = true;
      scan.step();
      return;
    } else {
      append(token, c);
      scan.step();
      if (ascii::isLower(c)) return;
    }
  }
}

}  // namespace

size_t scanFormulaToken(const char *formula, size_t position, bool separated,
                        bool blanksAsDots, FormulaToken &token) {
  token = FormulaToken{};
  Scanner scan(formula, position, blanksAsDots);
  bool capital = false;
  scanSymbol(scan, separated, token, capital);
  if (capital && scan.peek() == '*') {
    token.star = true;
    scan.step();
  }
  token.lowCount = scan.number();
  if (token.length > 0 && token.lowCount == 0) token.lowCount = 1;
  token.highCount = token.lowCount;
  // A range: "_" or "..", then the upper end.
  if (scan.peek() == '_' || (scan.peek() == '.' && scan.peek(1) == '.')) {
    scan.step();
    if (scan.peek() == '.') scan.step();
    int32_t high = scan.number();
    token.highCount = token.length > 0 && high == 0 ? token.lowCount : high;
  }
  while (ascii::isSpace(scan.peek())) scan.step();
  return scan.position();
}

}  // namespace fskit::chemistry
