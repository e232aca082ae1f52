// SPDX-License-Identifier: MIT
// Formulas parsed while another thread reloads the element table see the old or the new one.
#include <fskit/chemistry.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/test_support.h"
#include "tests/threads/stress.h"

namespace {

const char *const kFormulas[] = {"C6H12O6", "C8H10N4O2", "CH3CH2OH", "C254H377N65O75S6",
                                 "Na.Cl",   "13C C5H12O6", "C2H5Xx", "c6h6"};
constexpr int kFormulaCount = int(std::size(kFormulas));

std::string shippedTable() { return std::string(FSKIT_SOURCE_DIR) + "/data/kw_elements.tbl"; }
// The same with another average mass for carbon.
std::string changedTable() { return fskit::stress::scratchDir() + "/changed_elements.tbl"; }

// Formula k parsed, or for k = kFormulaCount the record of carbon.
std::string resultOf(int k) {
  char line[400];
  if (k == kFormulaCount) {
    FsElementRecord record{};
    int32_t index = fsFindElemInTbl("C");
    int32_t found = fsGetElementInfo(index, &record);
    std::snprintf(line, sizeof line, "%d %d %.6f %s", index, found, record.averageMass,
                  record.symbol);
    return line;
  }
  char text[256];
  int32_t nominal = 0;
  double mono = 0, average = 0, rdb = 0;
  int32_t result = fsTblParseMF(kFormulas[k], 0, 0, text, &nominal, &mono, &average, &rdb, 0,
                                nullptr, nullptr, nullptr, nullptr);
  std::snprintf(line, sizeof line, "%d %s %d %.9f %.9f %.1f", result, result > 0 ? text : "",
                nominal, mono, average, rdb);
  return line;
}

// What each result is under either table.
std::vector<std::string> underShipped, underChanged;

void loadAll(std::vector<std::string> &results) {
  for (int k = 0; k <= kFormulaCount; ++k) results.push_back(resultOf(k));
}

void prepareTables() {
  std::string text = fskit::test::readFile(shippedTable());
  size_t carbon = text.find("\nC       6  12.011 ");
  ASSERT_NE(carbon, std::string::npos);
  text.replace(carbon + 12, 6, "12.111");
  fskit::test::writeFile(changedTable(), text);
  ASSERT_EQ(fsLoadElemTable(changedTable().c_str()), 1);
  loadAll(underChanged);
  ASSERT_EQ(fsLoadElemTable(shippedTable().c_str()), 1);
  loadAll(underShipped);
  ASSERT_NE(underShipped[0], underChanged[0]);
}

// Worker 0 reloads on every round, alternating between the two tables.
std::string elementsRound(int worker, int round) {
  if (worker == 0) {
    const std::string &table = round % 2 == 0 ? changedTable() : shippedTable();
    return "load " + std::to_string(fsLoadElemTable(table.c_str()));
  }
  size_t k = size_t((worker + round) % (kFormulaCount + 1));
  std::string result = resultOf(int(k));
  return result == underShipped[k] || result == underChanged[k] ? "whole" : result;
}

const fskit::stress::Registration elements{{"elements", 3000, elementsRound, prepareTables}};

TEST(ElementThreads, TheFirstLoadServesEveryThread) {
  fskit::test::TempDir dir;
  fskit::test::writeFile(dir.file("kw_elements.tbl"), fskit::test::readFile(shippedTable()));
  fskit::test::ChangeDir here(dir.path());
  ASSERT_EQ(fsInitElemTable(0, 0), 1);  // no table present
  ASSERT_EQ(fsElementTableCount(), 0);
  std::vector<int32_t> found(fskit::stress::kThreads, -2);
  fskit::stress::onThreads(fskit::stress::kThreads,
                           [&found](int i) { found[size_t(i)] = fsFindElemInTbl("N"); });
  EXPECT_GT(fsElementTableCount(), 0);
  for (int32_t index : found) EXPECT_EQ(index, fsFindElement("N", nullptr));
}

}  // namespace
