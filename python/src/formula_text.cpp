// SPDX-License-Identifier: MIT
// Formula arguments read as the richer formula text (readFormulaText), and
// the FormulaError for a text that does not read.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "python/src/errors.h"
#include "python/src/formula.h"
#include "python/src/messages.h"

namespace py = pybind11;

namespace fskit::python {
namespace {

// Characters (UTF-8 sequences) before byte `position`: Python counts those.
size_t characterIndex(const std::string &text, size_t position) {
  size_t characters = 0;
  for (size_t at = 0; at < position && at < text.size(); ++at)
    characters += (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
  return characters;
}

// The quoted symbol or isotope label of "unknown element 'Xx' ...", else "".
std::string unknownSymbol(const std::string &error) {
  for (const char *start : {"unknown element '", "unknown isotope '"}) {
    std::string prefix = start;
    size_t end = error.find('\'', prefix.size());
    if (error.compare(0, prefix.size(), prefix) == 0 && end != std::string::npos)
      return error.substr(prefix.size(), end - prefix.size());
  }
  return "";
}

std::vector<chemistry::FormulaAtom> readText(const std::string &text) {
  if (text.find('\0') != std::string::npos)
    refuseText("unexpected character NUL", text.find('\0'), text, "formula");
  chemistry::FormulaComposition read;
  {
    py::gil_scoped_release unlocked;
    read = chemistry::readFormulaText(text.c_str());
  }
  forwardLibraryMessages();  // loading the default element table may have said something
  if (!read.ok()) refuseText(read.error, read.errorPosition, text, "formula");
  return std::move(read.atoms);
}

}  // namespace

void refuseText(const std::string &error, size_t position, const std::string &text,
                const char *noun) {
  // The reader's "... at position <byte>" is said again with the character.
  std::string suffix = " at position " + std::to_string(position);
  std::string what = error;
  size_t cut = what.size() - std::min(what.size(), suffix.size());
  if (what.compare(cut, std::string::npos, suffix) == 0) what.resize(cut);
  size_t index = characterIndex(text, position);
  std::string message = what + " at position " + std::to_string(index) + " of " + noun + " '" +
                        text + "'";
  raise("FormulaError", py::make_tuple(message, text, unknownSymbol(error), index));
}

std::vector<chemistry::FormulaAtom> formulaAtoms(const Formula &formula) {
  return readText(formula.text);
}

std::vector<chemistry::FormulaAtom> formulaAtoms(const py::handle &formula) {
  if (py::isinstance<Formula>(formula)) return formulaAtoms(formula.cast<const Formula &>());
  if (!py::isinstance<py::str>(formula))
    raiseBuiltin(PyExc_TypeError, "a formula is a str or an fskit.Formula, not " +
                                      std::string(py::str(formula.get_type().attr("__name__"))));
  return readText(formula.cast<std::string>());
}

}  // namespace fskit::python
