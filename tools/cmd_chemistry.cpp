// SPDX-License-Identifier: MIT
// fskit formula, fskit elements.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <fskit/chemistry.h>
#include <fskit/frame.h>

#include "chemistry/composition_internal.h"
#include "chemistry/ion_internal.h"
#include "tools/command.h"
#include "tools/element_choice.h"

namespace fskit::tool {
namespace {

// Names the symbol that stopped fsTblParseMF after `consumed` characters.
// The range parser reads the same tokens when given the formula as the
// merging parser sees it (blanks as ".") and keeps the refused symbol.
std::string describeRefusal(const std::string &formula, int32_t consumed) {
  std::string dotted = formula;
  for (char &c : dotted)
    if (c == ' ') c = '.';
  int32_t separated = dotted.find('.') != std::string::npos;
  size_t room = dotted.size() + 2;
  std::vector<char> symbols(room * 10, '\0');
  std::vector<int32_t> low(room, -1), high(room), numbers(room), shifts(room), flags(room);
  FsMsgFunction previous = fsMsgFunctionIs();
  fsRegisterMessage(nullptr);
  fsTblParseMFRange(dotted.c_str(), separated, int32_t(room),
                    reinterpret_cast<char(*)[10]>(symbols.data()), low.data(), high.data(),
                    numbers.data(), shifts.data(), flags.data());
  fsRegisterMessage(previous);
  size_t refused = 0;
  while (refused < room && low[refused] != -1) ++refused;
  std::string symbol(&symbols[refused * 10]);
  // Where the symbol starts: its last occurrence, in any case, before the end
  // of what was consumed.
  std::string before = formula.substr(0, size_t(consumed));
  size_t start = std::string::npos;
  for (size_t at = before.size() >= symbol.size() ? before.size() - symbol.size() + 1 : 0;
       at-- > 0 && start == std::string::npos;)
    if (strncasecmp(before.c_str() + at, symbol.c_str(), symbol.size()) == 0) start = at;
  size_t position = start == std::string::npos ? size_t(consumed) : start + 1;
  return "unknown symbol '" + symbol + "' at position " + std::to_string(position) +
         " of '" + formula + "'";
}

// --composition: per formula and element its count, mass and percent; the
// formula is read as the richer formula text.
int printComposition(bool json, const std::vector<std::string> &formulas) {
  Table table(json, {{"formula"}, {"element"}, {"count", true}, {"mass", true},
                     {"percent", true}});
  int status = kOk;
  for (const std::string &formula : formulas) {
    chemistry::MassComposition shares = chemistry::readMassComposition(formula.c_str());
    if (!shares.ok) {
      status = failure("formula", (shares.error.empty() ? "no masses" : shares.error) + " of '" +
                                      formula + "'");
      continue;
    }
    for (const chemistry::ElementShare &share : shares.elements) {
      // Steps of 0.0001 %: the whole percent, then four decimals.
      constexpr int64_t kStepsPerPercent = chemistry::kPercentSteps / 100;
      char percent[32];
      std::snprintf(percent, sizeof percent, "%lld.%04lld",
                    static_cast<long long>(share.percentSteps / kStepsPerPercent),
                    static_cast<long long>(share.percentSteps % kStepsPerPercent));
      table.row({formula, share.label, std::to_string(share.count), fixed(share.mass, 4),
                 percent});
    }
  }
  return status;
}

}  // namespace

int runFormula(std::vector<std::string> &args) {
  bool json = takeFlag(args, "--json");
  bool composition = takeFlag(args, "--composition");
  bool missing = false;
  std::optional<std::string> adductText = takeOption(args, "--adduct", missing);
  if (missing) return usageError("formula", "--adduct needs an adduct such as [M+H]+");
  if (composition && adductText)
    return usageError("formula", "give --adduct or --composition, not both");
  TableChoice choice;
  if (int status = takeTableChoice("formula", args, choice); status != kOk) return status;
  if (args.empty()) return usageError("formula", "no formula given");
  if (int status = formulasFromStandardInput("formula", args); status != kOk) return status;
  if (int status = loadElementTable("formula", choice); status != kOk) return status;
  if (composition) return printComposition(json, args);
  chemistry::Adduct adduct;
  if (adductText) {
    adduct = chemistry::readAdduct(adductText->c_str());
    if (!adduct.ok()) return failure("formula", adduct.error + " of adduct '" + *adductText + "'");
  }

  std::vector<Table::Column> columns = {{"formula"}, {"canonical"}, {"nominal", true},
                                        {"monoisotopic", true}, {"average", true}, {"rdb", true}};
  if (adductText) columns.push_back({"mz", true});
  Table table(json, columns);
  int status = kOk;
  for (const std::string &formula : args) {
    std::vector<char> text(20 * formula.size() + 2);
    int32_t nominal = 0;
    double mono = 0.0, average = 0.0, rdb = 0.0;
    int32_t result = fsTblParseMF(formula.c_str(), 0, 0, text.data(), &nominal, &mono,
                                  &average, &rdb, 0, nullptr, nullptr, nullptr, nullptr);
    if (result <= 0) {
      status = failure("formula", result < 0 ? describeRefusal(formula, -result)
                                             : "empty formula '" + formula + "'");
      continue;
    }
    std::vector<std::string> cells = {formula, text.data(), std::to_string(nominal),
                                      fixed(mono, 6), fixed(average, 4), fixed(rdb, 1)};
    if (adductText) cells.push_back(fixed(chemistry::adductMz(mono, adduct), 6));
    table.row(cells);
  }
  return status;
}

int runElements(std::vector<std::string> &args) {
  bool json = takeFlag(args, "--json");
  TableChoice choice;
  if (int status = takeTableChoice("elements", args, choice); status != kOk) return status;
  if (!args.empty()) return usageError("elements", "unexpected argument " + args.front());
  if (int status = loadElementTable("elements", choice); status != kOk) return status;
  Table table(json, {{"index", true}, {"label"}, {"symbol"}, {"atomic", true}, {"nominal", true},
                     {"monoisotopic", true}, {"average", true}, {"abundance", true},
                     {"rdbFactor", true}, {"shift", true}});
  for (int32_t i = 0; i < fsElementTableCount(); ++i) {
    FsElementRecord record;
    if (fsGetElementInfo(i, &record) == 0) return kFailed;
    char abundance[32];
    std::snprintf(abundance, sizeof abundance, "%g", record.abundance);
    table.row({std::to_string(i), std::string(record.label, strnlen(record.label, 8)),
               record.symbol, std::to_string(record.atomicNumber),
               std::to_string(record.nominalMass), fixed(record.monoMass, 9),
               fixed(record.averageMass, 9), abundance, std::to_string(record.rdbFactor),
               std::to_string(record.isotopeShift)});
  }
  return kOk;
}

}  // namespace fskit::tool
