// SPDX-License-Identifier: MIT
// What the chemistry commands share: the element table they load, the
// formulas read from standard input, and fixed-point numbers.
//
// The element table comes from, in this order: --elements FILE; the file an
// INI document names (--ini FILE, paragraph "Formula Files", topic
// "elementFile"); the shipped kw_elements.tbl, found as
// share/fskit/kw_elements.tbl next to the tool (build tree) or one level up
// (bin/../share/fskit under the install prefix); last, the library's own
// default names in the current directory.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace fskit::tool {

struct TableChoice {
  std::optional<std::string> elements;  // --elements FILE
  std::optional<std::string> ini;       // --ini FILE
};

// Takes --elements and --ini from args (and a "--" ending the options); a
// left-over option is an error. kOk, or the usage error reported.
int takeTableChoice(const char *command, std::vector<std::string> &args, TableChoice &choice);

// Loads the element table the choice names. kOk, or the failure reported in
// one line.
int loadElementTable(const char *command, const TableChoice &choice);

// A single "-" in args stands for the formulas on standard input, one per
// line (blank lines skipped): args becomes those. kOk, or the failure reported.
int formulasFromStandardInput(const char *command, std::vector<std::string> &args);

// `value` with `decimals` decimals ("%.*f").
std::string fixed(double value, int decimals);

}  // namespace fskit::tool
