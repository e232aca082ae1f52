// SPDX-License-Identifier: MIT
// What the tests of the richer formula text's users share: the shipped
// element table loaded for each test, and a formula's atoms.
#pragma once

#include <fskit/chemistry.h>
#include <gtest/gtest.h>

#include <vector>

#include "chemistry/formula_text_internal.h"

namespace fskit::chemistry::test {

class ShippedTableTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(fsLoadElemTable(FSKIT_SOURCE_DIR "/data/kw_elements.tbl"), 1);
  }
};

// The atoms of a formula that must read.
inline std::vector<FormulaAtom> atomsOf(const char *formula) {
  FormulaComposition read = readFormulaText(formula);
  EXPECT_TRUE(read.ok()) << formula << ": " << read.error;
  return read.atoms;
}

}  // namespace fskit::chemistry::test
