// SPDX-License-Identifier: MIT
// Where a pattern's isotopes come from: the element table's isotope records
// for each atom; and the atoms of an adduct ion.
#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <utility>

#include "chemistry/chemistry.h"
#include "chemistry/isotope_pattern.h"
#include "chemistry/isotope_pattern_internal.h"

namespace fskit::chemistry {
namespace pattern {
namespace {

std::string labelOf(const FormulaAtom &atom) {
  return atom.massNumber > 0 ? std::to_string(atom.massNumber) + atom.symbol : atom.symbol;
}

int32_t recordOf(TableReader &reader, const std::string &label) {
  return label.size() < FormulaToken::kSymbolSize ? findLabel(reader, label.c_str()) : -1;
}

// An element's natural isotopes: the isotope records after its own record
// that have an abundance. None: the reference isotope alone.
void naturalIsotopes(const TableSnapshot &table, int32_t record, ElementIsotopes &element) {
  const FsElementRecord &head = table.records[record];
  for (int32_t i = record + 1; i < table.count && table.records[i].isotopeShift != 0; ++i) {
    const FsElementRecord &isotope = table.records[i];
    if (!(isotope.abundance > 0.0)) continue;
    element.mass.push_back(isotope.monoMass);
    element.probability.push_back(isotope.abundance);
    element.shift.push_back(isotope.nominalMass);
  }
  if (element.mass.empty()) {
    element.mass.push_back(head.monoMass);
    element.probability.push_back(1.0);
    element.shift.push_back(head.nominalMass);
  }
}

// Falling abundance (the walk gives the most abundant isotope what is left),
// probabilities adding up to 1, shifts counted from the lightest isotope.
void normalise(ElementIsotopes &element) {
  size_t n = element.mass.size();
  for (size_t i = 1; i < n; ++i)  // insertion sort: a handful, kept stable
    for (size_t j = i; j > 0 && element.probability[j] > element.probability[j - 1]; --j) {
      std::swap(element.probability[j], element.probability[j - 1]);
      std::swap(element.mass[j], element.mass[j - 1]);
      std::swap(element.shift[j], element.shift[j - 1]);
    }
  double total = std::accumulate(element.probability.begin(), element.probability.end(), 0.0);
  int32_t lightest = *std::min_element(element.shift.begin(), element.shift.end());
  element.steps.assign(n, ElementIsotopes::Step{});
  double below = 0.0;
  for (size_t i = 0; i < n; ++i) {
    double p = element.probability[i] /= total;
    element.shift[i] -= lightest;
    below += p;
    double q = p / below;  // the first isotope takes what is left: no step
    if (i > 0) element.steps[i] = {q, std::log(q), std::log1p(-q), q / (1.0 - q)};
  }
}

}  // namespace

bool gatherIsotopes(const std::vector<FormulaAtom> &atoms,
                    std::vector<ElementIsotopes> &elements, std::string &error) {
  TableReader reader;
  elements.clear();
  for (const FormulaAtom &atom : atoms) {
    if (atom.count == 0) continue;
    ElementIsotopes element;
    element.label = labelOf(atom);
    element.count = atom.count;
    int32_t record = recordOf(reader, element.label);
    if (record < 0) {
      error = "'" + element.label + "' is not in the element table";
      return false;
    }
    const TableSnapshot &table = reader.table();
    const FsElementRecord &found = table.records[record];
    if (found.isotopeShift != 0) {
      element.mass = {found.monoMass};
      element.probability = {1.0};
      element.shift = {0};
    } else {
      naturalIsotopes(table, record, element);
    }
    normalise(element);
    elements.push_back(std::move(element));
  }
  return true;
}

}  // namespace pattern

IonAtoms ionAtoms(const std::vector<FormulaAtom> &molecule, const Adduct &adduct) {
  IonAtoms ion;
  if (!adduct.ok()) {
    ion.error = adduct.error;
    return ion;
  }
  // Counts per (symbol, mass number), in order of first appearance.
  std::vector<FormulaAtom> atoms;
  auto add = [&](const FormulaAtom &atom, int64_t times) {
    auto same = std::find_if(atoms.begin(), atoms.end(), [&](const FormulaAtom &a) {
      return a.symbol == atom.symbol && a.massNumber == atom.massNumber;
    });
    if (same == atoms.end()) same = atoms.insert(atoms.end(), {atom.symbol, atom.massNumber, 0});
    same->count += atom.count * times;
  };
  for (const FormulaAtom &atom : molecule) {
    if (atom.count > kMaxFormulaCount / std::max<int64_t>(adduct.molecules, 1)) {
      ion.error = "too many atoms in the ion";
      return ion;
    }
    add(atom, adduct.molecules);
  }
  for (const FormulaAtom &atom : adduct.added) add(atom, 1);
  for (const FormulaAtom &atom : adduct.removed) add(atom, -1);
  for (const FormulaAtom &atom : atoms) {
    std::string label = pattern::labelOf(atom);
    if (atom.count < 0) {
      ion.error = "the adduct removes more " + label + " than the molecule has";
      return ion;
    }
    if (atom.count > kMaxFormulaCount) {
      ion.error = "too many " + label + " atoms in the ion";
      return ion;
    }
  }
  std::erase_if(atoms, [](const FormulaAtom &a) { return a.count == 0; });
  ion.atoms = std::move(atoms);
  return ion;
}

}  // namespace fskit::chemistry
