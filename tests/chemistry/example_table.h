// SPDX-License-Identifier: MIT
// What the chemistry tests share: a small element file (C 12C 13C H 1H 2H O 16O 17O 18O) and a
// fixture that loads the shipped one.
#pragma once

#include <fskit/chemistry.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "chemistry/formula_text_internal.h"
#include "tests/support/test_support.h"

namespace fskit::test {

inline const char kExampleTable[] =
    "C   6   12.011   12   -   12C   12.000000   98.90    0   2\n"
    "  13C   13.003355   1.10\n"
    "H   1   1.008    1    -   1H    1.007825    99.985   0   -1\n"
    "  2H    2.014102    0.015\n"
    "O   8   15.999   16   -   16O   15.994915   99.762   0   0\n"
    "  17O   16.999131   0.038\n"
    "  18O   17.999159   0.200\n";

// Writes `content` into `dir` as `name` and loads it as the element table.
inline std::string loadTable(const TempDir &dir, const std::string &content,
                             const std::string &name = "elements.tbl") {
  std::string path = dir.file(name);
  writeFile(path, content);
  fsLoadElemTable(path.c_str());
  return path;
}

class ShippedTableTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(fsLoadElemTable(FSKIT_SOURCE_DIR "/data/kw_elements.tbl"), 1); }
};

// The atoms of a formula that must read.
inline std::vector<chemistry::FormulaAtom> atomsOf(const char *formula) {
  chemistry::FormulaComposition read = chemistry::readFormulaText(formula);
  EXPECT_TRUE(read.ok()) << formula << ": " << read.error;
  return read.atoms;
}

}  // namespace fskit::test
