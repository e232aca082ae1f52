// SPDX-License-Identifier: MIT
// Cases of the command-line and tag family that once went wrong.
#include <fskit/cmdline.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace {

// "TAG=label;" for every record read from `text`.
std::string readPairs(const std::string &text, int32_t mode) {
  int32_t count = 0, capacity = 0;
  KwaTagEntry *table = nullptr;
  std::FILE *stream = fskit::test::streamOf(text);
  EXPECT_EQ(kwaReadTags(stream, mode, &count, &capacity, &table), 1);
  std::fclose(stream);
  std::string pairs;
  for (int32_t i = 0; i < count; ++i) pairs += std::string(table[i].tag) + "=" + table[i].label + ";";
  std::free(table);
  return pairs;
}

}  // namespace

TEST(CmdlineRegression, TagLinesAreRead254CharactersAtATime) {
  const std::string a63(63, 'a');
  struct Case {
    std::string file;
    int32_t mode;
    std::string pairs;
  };
  const Case cases[] = {
      // The rest of a line longer than one read was skipped; it is the next line.
      {"T1 " + std::string(251, 'a') + "T2 tail\n", 0, "T1=" + a63 + ";T2=tail;"},
      {"T1 " + std::string(251, 'a') + "T2 tail\n", 1,
       "T1=##" + std::string(60, 'A') + "=;T2=##TAIL=;"},
      // A comment covered the whole long line; it covers only the first read.
      {"!" + std::string(253, 'c') + "X y ! z\n", 0, "X=y;"},
      // A line of exactly 254 characters leaves its line feed to a read of its own.
      {"T " + std::string(252, 'a') + "\nU v\n", 0, "T=" + a63 + ";U=v;"},
  };
  for (const Case &c : cases) EXPECT_EQ(readPairs(c.file, c.mode), c.pairs) << c.file;
}

TEST(CmdlineRegression, ArrayAllocTakesANegativeCountAsASmallerOne) {
  struct Case {
    bool withBuffer;
    int32_t n, result, count, capacity;
  };
  const Case cases[] = {
      // A negative count gave 0 and changed nothing; it sets the count and
      // the result tells whether there is a buffer.
      {true, -3, 1, -3, 10},
      {false, -1, 0, -1, 0},
  };
  for (const Case &c : cases) {
    KwaArray array{0, 0, 0, 0, nullptr};
    if (c.withBuffer) {
      ASSERT_EQ(kwaArrayAlloc(&array, 10, 4), 1);
    }
    void *buffer = array.data;
    EXPECT_EQ(kwaArrayAlloc(&array, c.n, 8), c.result) << c.n;
    EXPECT_EQ(array.count, c.count);
    EXPECT_EQ(array.capacity, c.capacity);
    EXPECT_EQ(array.data, buffer);  // never freed nor reallocated
    EXPECT_EQ(array.elemSize, c.withBuffer ? 4u : 0u);
    std::free(array.data);
  }
}

TEST(CmdlineRegression, ComparatorsTakeNullRecords) {
  // Both comparators read through a null record; it now orders first.
  const KwaTagEntry record{"A", "x", 1};
  for (auto compare : {kwaTblTagCmp, kwaTblLblCmp}) {
    EXPECT_EQ(compare(nullptr, nullptr), 0);
    EXPECT_EQ(compare(nullptr, &record), -1);
    EXPECT_EQ(compare(&record, nullptr), 1);
    EXPECT_EQ(compare(&record, &record), 0);
  }
}

TEST(CmdlineRegression, UnmatchedQuoteLeavesTheLineUnterminated) {
  // A quote left open at the end of the line had a terminator written where
  // its copy ended, cutting off the line's last bytes; now nothing is written
  // there, so after collapsed "" pairs the text ends with those bytes.
  struct Case {
    std::string line, after, text;
  };
  const Case cases[] = {
      {"\"a\"\"b", std::string("\"a\"bb", 5), "a\"bb"},
      {"/q=\"x\"\"\"\"y", std::string("/q\0\"x\"\"y\"y", 10), "x\"\"y\"y"},
      {"x \"ab", std::string("x\0\"ab", 5), "ab"},
  };
  for (const Case &c : cases) {
    std::vector<char> line(c.line.begin(), c.line.end());
    line.push_back('\0');
    KwaCmdLnParts parts;
    std::string err = fskit::test::captureStderr([&] { EXPECT_EQ(kwaCmdLnPrts(line.data(), &parts), 0); });
    EXPECT_EQ(err, "%kwaCmdLnPrts, Unmatched quoted string.\n") << c.line;
    EXPECT_EQ(std::string(line.data(), line.size() - 1), c.after) << c.line;
    const char *open = parts.nQuals > 0 ? parts.qualValues[0] : parts.args[parts.nArgs - 1];
    EXPECT_EQ(std::string(open), c.text) << c.line;
  }
}
