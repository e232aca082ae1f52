// SPDX-License-Identifier: MIT
// Tag files, tables, lookups and comparators; the tool's cmdline and tags commands.
#include <fskit/cmdline.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tests/support/test_support.h"

using fskit::test::runTool;

namespace {

struct Table {
  int32_t count = 0, capacity = 0;
  KwaTagEntry *entries = nullptr;
  ~Table() { std::free(entries); }

  int32_t add(const std::string &tag, const std::string &label) {
    return kwaAddToTbl(tag.c_str(), label.c_str(), &count, &capacity, &entries);
  }
  void read(std::string text, int32_t mode) {
    std::FILE *stream = fskit::test::streamOf(text);
    EXPECT_EQ(kwaReadTags(stream, mode, &count, &capacity, &entries), 1);
    EXPECT_EQ(kwaReadTags(stream, mode, &count, &capacity, &entries), 1);  // at its end already
    std::fclose(stream);
  }
  // "TAG=label;" for every record.
  std::string pairs() const {
    std::string out;
    for (int32_t i = 0; i < count; ++i) {
      EXPECT_EQ(entries[i].labelLen, int32_t(std::strlen(entries[i].label)));
      out += std::string(entries[i].tag) + "=" + entries[i].label + ";";
    }
    return out;
  }
};

}  // namespace

TEST(TagFile, ReadsPairsAndKeywords) {
  // Past a 254-character read a line goes on as a new one (was skipped), a comment's rest too.
  const std::string file = "ms Mass spectrum\n! ignored\n\n  uv    Ultra   violet  \n"
                           "MASS Mass range ! scanned\nonlytag\n\tTab\tlabel\r\n!" +
                           std::string(260, 'c') + " TAIL comment\n" + std::string(70, 't') + " " +
                           std::string(353, 'l') + " ZZ tail\nT " + std::string(252, 'a') +
                           "\nU v\nlast line";
  Table plain, keywords;
  plain.read(file, 0);
  EXPECT_EQ(plain.pairs(), "MS=Mass spectrum;UV=Ultra violet;MASS=Mass range;TAB=label;"
                           "CCCCCCC=TAIL comment;" + std::string(63, 'T') + "=" +
                               std::string(63, 'l') + ";" + std::string(63, 'L') +
                               "=ZZ tail;T=" + std::string(63, 'a') + ";U=v;LAST=line;");
  keywords.read(file, 1);
  EXPECT_EQ(keywords.pairs(), "MS=##MASS SPECTRUM=;UV=##ULTRA VIOLET=;MASS=##MASS RANGE=;"
                              "TAB=##LABEL=;CCCCCCC=##TAIL COMMENT=;" + std::string(63, 'T') +
                                  "=##" + std::string(60, 'L') + "=;" + std::string(63, 'L') +
                                  "=##ZZ TAIL=;T=##" + std::string(60, 'A') + "=;U=##V=;LAST=##LINE=;");
  // Records are compared whole: no bytes after the NULs from an earlier, longer line's buffers.
  KwaTagEntry expected{"U", "v", 1};
  EXPECT_EQ(std::memcmp(&plain.entries[8], &expected, sizeof expected), 0);
}

TEST(TagTable, AddsLooksUpAndGrowsByTen) {
  Table table;
  EXPECT_EQ(table.add("ms", "Mass spectrum") + table.add("uv", "Ultra violet"), 3);
  EXPECT_EQ(table.add("MS", "mass spectrum extra"), 2);  // its label's first match has tag MS
  EXPECT_EQ(table.add("MX", "mass spectrum extra") + table.add("", "x") + table.add("x", ""), 9);
  char text[64];
  EXPECT_EQ(kwaLabelToTag(table.count, table.entries, "MASS SPECTRUM", text), 0);
  EXPECT_STREQ(text, "MS");
  EXPECT_EQ(kwaLabelToTag(table.count, table.entries, "ultra", text), -1);  // shorter
  EXPECT_STREQ(text, "");
  EXPECT_EQ(kwaTagToLabel(table.count, table.entries, "UV", text), 1);
  EXPECT_STREQ(text, "Ultra violet");
  EXPECT_EQ(kwaTagToLabel(table.count, table.entries, "ms", text), -1);
  EXPECT_STREQ(text, "");
  for (int i = 3; i < 21; ++i) {
    EXPECT_EQ(table.add("t" + std::to_string(i), "l" + std::to_string(i)), i + 1);
    EXPECT_EQ(table.capacity, i < 10 ? 10 : i < 20 ? 20 : 30);
  }
  EXPECT_EQ(table.pairs().substr(0, 50), "MS=Mass spectrum;UV=Ultra violet;MX=mass spectrum ");
  EXPECT_EQ(std::string(table.entries[20].tag) + table.entries[20].label, "T20l20");

  // A count beyond the block changes nothing; a table that cannot grow is released, not leaked.
  int32_t count = 1, capacity = 10;
  KwaTagEntry *none = nullptr;
  EXPECT_EQ(kwaAddToTbl("A", "x", &count, &capacity, &none), 0);
  auto *full = static_cast<KwaTagEntry *>(std::calloc(1, sizeof(KwaTagEntry)));
  *full = KwaTagEntry{"A", "x", 1};
  count = capacity = INT32_MAX - 5;
  EXPECT_EQ(kwaAddToTbl("B", "x", &count, &capacity, &full), 0);
  EXPECT_EQ(full, nullptr);
}

TEST(TagTable, ComparatorsOrderByTagOrLabelFirst) {
  KwaTagEntry entries[] = {{"B", "a", 1}, {"A", "y", 1}, {"A", "x", 1}, {"\x80", "0", 1}};
  auto sorted = [&](int (*compare)(const void *, const void *)) {
    std::qsort(entries, 4, sizeof(KwaTagEntry), compare);
    std::string order;
    for (const KwaTagEntry &e : entries) order += std::string(e.tag) + e.label + " ";
    return order;
  };
  EXPECT_EQ(sorted(kwaTblTagCmp), "Ax Ay Ba \x80" "0 ");
  EXPECT_EQ(sorted(kwaTblLblCmp), "\x80" "0 Ba Ax Ay ");
  EXPECT_EQ(kwaTblTagCmp(&entries[0], &entries[1]) - kwaTblTagCmp(&entries[1], &entries[0]), 2);
  // A null record (once read through) comes first.
  for (auto compare : {kwaTblTagCmp, kwaTblLblCmp})
    EXPECT_EQ(std::to_string(compare(nullptr, nullptr)) + std::to_string(compare(nullptr, entries)) +
                  std::to_string(compare(entries, nullptr)),
              "0-11");
}

TEST(CmdlineTool, PrintsPartsOrStopCharacter) {
  EXPECT_EQ(runTool({"cmdline", "copy", "a.dat,b.dat", "/log=out.txt /verbose"}).out,
            "part\ttext\tvalue\tend\nargument\tcopy\t\t\nargument\ta.dat\t\t,\n"
            "argument\tb.dat\t\t\nqualifier\tlog\tout.txt\t\nqualifier\tverbose\t\t\n");
  // JSON escapes quotes, backslashes and control characters; "" and a quote in a list close nothing.
  EXPECT_EQ(runTool({"cmdline", "--json", "--", "--x", "\"a\"\"\\\t\" /q=(\"x)"}).out,
            "{\"part\":\"argument\",\"text\":\"--x\",\"value\":\"\",\"end\":\"\"}\n"
            "{\"part\":\"argument\",\"text\":\"a\\\"\\\\\\u0009\",\"value\":\"\",\"end\":\"\"}\n"
            "{\"part\":\"qualifier\",\"text\":\"q\",\"value\":\"(\\\"x)\",\"end\":\"\"}\n");
  // A stop, or a quote or a list left open: the parser's line, nothing printed, status 1.
  for (const char *line : {"/q=a=b", "copy \"a b", "/q=(a,b"}) {
    auto failed = runTool({"cmdline", line});
    EXPECT_EQ(failed.status, 1) << line;
    EXPECT_EQ(failed.out, "") << line;
    EXPECT_EQ(failed.err.rfind("%kwaCmdLnPrts, ", 0), 0u) << line;
  }
  EXPECT_EQ(runTool({"cmdline"}).status, 2);
}

TEST(TagsTool, ListsAndLooksUp) {
  fskit::test::TempDir dir;
  std::string file = dir.file("tags.tbl");
  fskit::test::writeFile(file, "ms Mass spectrum ! comment\n\n  uv   Ultra  violet\n");
  EXPECT_EQ(runTool({"tags", file}).out, "tag\tlabel\nMS\tMass spectrum\nUV\tUltra violet\n");
  EXPECT_EQ(runTool({"tags", "--json", file}).out,
            "{\"tag\":\"MS\",\"label\":\"Mass spectrum\"}\n{\"tag\":\"UV\",\"label\":\"Ultra violet\"}\n");
  EXPECT_EQ(runTool({"tags", "--json", file, "--tag", "MS"}).status, 2);
  EXPECT_EQ(runTool({"tags", "--keywords", file, "--tag", "UV"}).out, "##ULTRA VIOLET=\n");
  // --label finds the first label that begins with it, ignoring case.
  EXPECT_EQ(runTool({"tags", file, "--label=mass"}).out, "MS\n");
  EXPECT_EQ(runTool({"tags", file, "--label", "ULTRA VIOLET"}).out, "UV\n");
  EXPECT_EQ(runTool({"tags", file, "--label", "mass spectrum scan"}).status, 1);
  auto missing = runTool({"tags", file, "--tag", "uv"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "fskit tags: no record with the tag 'uv'\n");
  EXPECT_EQ(runTool({"tags", dir.file("none")}).status, 1);
  EXPECT_EQ(runTool({"tags", file, "--tag", "A", "--label", "b"}).status, 2);
}
