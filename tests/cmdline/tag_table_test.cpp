// Tag tables: reading tag files, adding pairs, lookups both ways, the two
// comparators.
#include <fskit/cmdline.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

struct Table {
  int32_t count = 0;
  int32_t capacity = 0;
  KwaTagEntry *entries = nullptr;
  ~Table() { std::free(entries); }

  int32_t add(const std::string &tag, const std::string &label) {
    return kwaAddToTbl(tag.c_str(), label.c_str(), &count, &capacity, &entries);
  }
  Pairs pairs() const {
    Pairs out;
    for (int32_t i = 0; i < count; ++i) {
      EXPECT_EQ(entries[i].labelLen, int32_t(std::strlen(entries[i].label)));
      out.emplace_back(entries[i].tag, entries[i].label);
    }
    return out;
  }
};

void readTags(const std::string &text, int32_t mode, Table &table) {
  std::string copy = text;
  std::FILE *stream = fmemopen(copy.data(), copy.size(), "r");
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(kwaReadTags(stream, mode, &table.count, &table.capacity, &table.entries), 1);
  std::fclose(stream);
}

const std::string kTagFile =
    "ms Mass spectrum\n! ignored\n\n  uv    Ultra   violet  \n"
    "MASS Mass range ! scanned\nonlytag\n  ! indented comment\n"
    "\tTab\tseparated\tlabel\r\n";

}  // namespace

TEST(TagFile, ReadsPairsAndKeywords) {
  Table plain;
  readTags(kTagFile, 0, plain);
  EXPECT_EQ(plain.pairs(), (Pairs{{"MS", "Mass spectrum"}, {"UV", "Ultra violet"},
                                  {"MASS", "Mass range"}, {"TAB", "separated label"}}));
  Table keywords;
  readTags(kTagFile + "LONG " + std::string(70, 'y') + "\n", 1, keywords);
  EXPECT_EQ(keywords.pairs(),
            (Pairs{{"MS", "##MASS SPECTRUM="}, {"UV", "##ULTRA VIOLET="},
                   {"MASS", "##MASS RANGE="}, {"TAB", "##SEPARATED LABEL="},
                   {"LONG", "##" + std::string(60, 'Y') + "="}}));
}

TEST(TagFile, LongLinesGiveOneRecordAndNoTail) {
  // A comment and a record line both longer than one read (254 characters):
  // their tails, which hold text that looks like a record, add nothing.
  std::string longTag(70, 't'), longLabel(100, 'l');
  std::string text = "!" + std::string(260, 'c') + " TAIL comment\n" + longTag + " " + longLabel +
                     std::string(100, ' ') + "ZZ tail label\nlast line";
  Table table;
  readTags(text, 0, table);
  EXPECT_EQ(table.pairs(), (Pairs{{std::string(63, 'T'), std::string(63, 'l')},
                                  {"LAST", "line"}}));

  std::FILE *ended = fmemopen(text.data(), text.size(), "r");
  while (std::fgetc(ended) != EOF) {
  }
  EXPECT_EQ(kwaReadTags(ended, 0, &table.count, &table.capacity, &table.entries), 1);
  EXPECT_EQ(table.count, 2);
  std::fclose(ended);
  EXPECT_EQ(kwaReadTags(nullptr, 0, &table.count, &table.capacity, &table.entries), 1);
}

TEST(TagTable, AddsLooksUpAndGrowsByTen) {
  Table table;
  EXPECT_EQ(table.add("ms", "Mass spectrum"), 1);
  EXPECT_EQ(table.add("uv", "Ultra violet"), 2);
  EXPECT_EQ(table.add("MS", "mass spectrum extra"), 2);  // its label's first match has tag MS
  EXPECT_EQ(table.add("MX", "mass spectrum extra"), 3);
  EXPECT_EQ(table.add("", "label"), 3);
  EXPECT_EQ(table.add("tag", ""), 3);
  EXPECT_EQ(table.capacity, 10);

  char text[64];
  EXPECT_EQ(kwaLabelToTag(table.count, table.entries, "MASS SPECTRUM", text), 0);
  EXPECT_STREQ(text, "MS");
  // A given label shorter than the record's does not match.
  EXPECT_EQ(kwaLabelToTag(table.count, table.entries, "ultra", text), -1);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(kwaTagToLabel(table.count, table.entries, "UV", text), 1);
  EXPECT_STREQ(text, "Ultra violet");
  EXPECT_EQ(kwaTagToLabel(table.count, table.entries, "ms", text), -1);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(kwaTagToLabel(0, table.entries, "UV", text), -1);

  // Over-long texts keep 63 characters; the table grows 10 records at a time
  // and keeps what it held.
  EXPECT_EQ(table.add(std::string(70, 'a'), std::string(70, 'b')), 4);
  for (int i = 4; i < 21; ++i) {
    EXPECT_EQ(table.add("t" + std::to_string(i), "label " + std::to_string(i)), i + 1);
    EXPECT_EQ(table.capacity, i < 10 ? 10 : i < 20 ? 20 : 30);
  }
  Pairs pairs = table.pairs();
  EXPECT_EQ(pairs[3], std::make_pair(std::string(63, 'A'), std::string(63, 'b')));
  EXPECT_EQ(pairs[20], std::make_pair(std::string("T20"), std::string("label 20")));
  EXPECT_EQ(pairs[0], std::make_pair(std::string("MS"), std::string("Mass spectrum")));

  // A count that does not describe the block changes nothing.
  int32_t count = 1, capacity = 10;
  KwaTagEntry *none = nullptr;
  EXPECT_EQ(kwaAddToTbl("A", "b", &count, &capacity, &none), 0);
  EXPECT_EQ(none, nullptr);
  count = 31;
  EXPECT_EQ(kwaAddToTbl("A", "b", &count, &table.capacity, &table.entries), 0);

  // A table that cannot grow any further is released and the pointer cleared
  // (the leak checker sees a block left behind). Its first record matches the
  // label, so the lookup before the growth reads no other record.
  KwaTagEntry *full = static_cast<KwaTagEntry *>(std::calloc(1, sizeof(KwaTagEntry)));
  std::strcpy(full->tag, "A");
  std::strcpy(full->label, "x");
  full->labelLen = 1;
  count = capacity = INT32_MAX - 5;
  EXPECT_EQ(kwaAddToTbl("B", "x", &count, &capacity, &full), 0);
  EXPECT_EQ(full, nullptr);
  EXPECT_EQ(count, INT32_MAX - 5);
}

TEST(TagTable, ComparatorsOrderByTagOrLabelFirst) {
  std::vector<KwaTagEntry> entries(4);
  const Pairs records = {{"B", "a"}, {"A", "y"}, {"A", "x"}, {"\x80", "0"}};
  for (size_t i = 0; i < records.size(); ++i) {
    std::strcpy(entries[i].tag, records[i].first.c_str());
    std::strcpy(entries[i].label, records[i].second.c_str());
  }
  auto sorted = [&](int (*compare)(const void *, const void *)) {
    std::qsort(entries.data(), entries.size(), sizeof(KwaTagEntry), compare);
    std::string order;
    for (const KwaTagEntry &e : entries) order += std::string(e.tag) + e.label + " ";
    return order;
  };
  EXPECT_EQ(sorted(kwaTblTagCmp), "Ax Ay Ba \x80" "0 ");
  EXPECT_EQ(sorted(kwaTblLblCmp), "\x80" "0 Ba Ax Ay ");
  EXPECT_EQ(kwaTblTagCmp(&entries[0], &entries[1]), 1);
  EXPECT_EQ(kwaTblTagCmp(&entries[1], &entries[0]), -1);
  EXPECT_EQ(kwaTblLblCmp(&entries[1], &entries[1]), 0);
}
