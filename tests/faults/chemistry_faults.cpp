// SPDX-License-Identifier: MIT
// The element table and the formula parser under allocation failure: a load without memory
// leaves no table and says so; a parser past 100 symbols falls back to 100 or leaves no text.
#include <fskit/chemistry.h>
#include <fskit/frame.h>
#include <fskit/ini.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/chemistry/example_table.h"
#include "tests/support/alloc_fault.h"

using namespace fskit::test;

namespace {

// The last message, kept without allocating.
char lastMessage[128];
int32_t keepMessage(const char *, int32_t *, int32_t *, int32_t *, int32_t *, char **texts) {
  std::strncpy(lastMessage, texts[0], sizeof lastMessage - 1);
  return 0;
}

}  // namespace

TEST(ChemistryFaults, LoadsGiveATableOrNoneWithAMessage) {
  TempDir dir;
  ChangeDir into(dir.path());  // no default element file here
  const std::string path = dir.file("elements.tbl");
  writeFile(path, kExampleTable);
  fsRegisterMessage(keepMessage);
  const int32_t ini = fsIniNewFile("f.ini");
  fsIniSetValue(ini, "Formula Files", "elementFile", path.c_str(), "");

  for (bool throughIni : {false, true}) {
    int32_t result = -1;
    long runs = forEachAllocationFailure(
        [&] {
          lastMessage[0] = '\0';
          result = throughIni ? fsInitElemTable(ini, 1) : fsLoadElemTable(path.c_str());
        },
        [&](long k, bool refused) {
          SCOPED_TRACE(k);
          // Without the configured name only the absent defaults are tried.
          const std::string message = lastMessage;
          if (result == 0) {
            EXPECT_TRUE(refused);
            EXPECT_TRUE(message == "Unable to allocate element table." ||
                        (throughIni && message == "Failed to open element file kw_elements.tbl"))
                << message;
            EXPECT_EQ(fsElementTableCount(), 0);
          } else {
            EXPECT_EQ(result, 1);
            EXPECT_EQ(message, "");
            EXPECT_EQ(fsElementTableCount(), 10);
          }
          fsInitElemTable(0, 0);  // no table, no recorded name: the next load reads again
        });
    EXPECT_GE(runs, throughIni ? 3 : 2);
  }
}

TEST(ChemistryFaults, ParserBeyondHundredSymbolsFallsBack) {
  ASSERT_EQ(fsLoadElemTable(FSKIT_SOURCE_DIR "/data/kw_elements.tbl"), 1);
  std::string formula;
  for (int32_t i = 0; i < 150; ++i) {  // elements and isotopes alike
    FsElementRecord record;
    ASSERT_EQ(fsGetElementInfo(i, &record), 1);
    formula += std::string(record.label, strnlen(record.label, sizeof record.label)) + "2 ";
  }
  char symbols[150][10];
  int32_t counts[150];
  std::vector<char> text(20 * 150 + 1);
  auto parse = [&] {
    return fsTblParseMF(formula.c_str(), 0, 0, text.data(), nullptr, nullptr, nullptr, nullptr,
                        150, symbols, counts, nullptr, nullptr);
  };
  ASSERT_EQ(parse(), 150);
  const std::string whole = text.data();
  int32_t result = 0;
  // Allocation 1 is room for the symbols (without it: 100 of them), 2 the text's table order.
  forEachAllocationFailure([&] { result = parse(); },
                           [&](long k, bool refused) {
                             EXPECT_EQ(refused, k < 3);
                             EXPECT_EQ(result, k == 1 ? 100 : 150);
                             if (k == 1) {
                               EXPECT_NE(text[0], '\0');
                             } else {
                               EXPECT_EQ(text.data(), k == 2 ? "" : whole);
                             }
                           });
}
