// SPDX-License-Identifier: MIT
// The document model: how lines and files read, what the writer makes of them, and the text
// setters' rules (round trips of any text are the INI fuzz target's).
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "ini/document.h"
#include "tests/support/test_support.h"

using namespace fskit::ini;

namespace {

std::unique_ptr<FsIniFile> readText(const std::string &text) {
  std::unique_ptr<FsIniFile> document(FsIniFile::create("test.ini"));
  std::FILE *stream = fskit::test::streamOf(text);
  EXPECT_EQ(document->read(stream), kOk);
  std::fclose(stream);
  return document;
}

template <class Item>
std::string written(const Item &item) {
  return fskit::test::writtenTo([&](std::FILE *stream) { EXPECT_EQ(item.write(stream), kOk); });
}

std::string show(const char *text) { return text != nullptr ? text : "<null>"; }

}  // namespace

TEST(IniLine, ReadsAndWritesTheExampleLines) {
  struct {
    const char *line;
    int result;
    const char *topic, *value, *comment, *writtenBack;
  } cases[] = {
      {"topic = value ; note", kOk, "topic", "value", "note", "topic = value\t; note\n"},
      {"topic = \"a;b\"", kOk, "topic", "a;b", nullptr, "topic = \"a;b\"\n"},
      {"topic = \"a\" ; note", kOk, "topic", "a", nullptr, "topic = a\n"},
      {"topic = ;note", kOk, "topic", nullptr, "note", "topic = \t; note\n"},
      {"topic=", kOk, "topic", nullptr, nullptr, "topic = \n"},
      {"topic == x", kOk, "topic", "x", nullptr, "topic = x\n"},
      {"a = b=c", kOk, "a", "b=c", nullptr, "a = b=c\n"},
      {"; note", kOk, nullptr, nullptr, "note", "; note\n"},
      {";", kOk, nullptr, nullptr, nullptr, "\n"},
      {"  name   =   value   ; remark  \r", kOk, "name", "value", "remark",
       "name = value\t; remark\n"},
      {"t = \"open to the end  ", kOk, "t", "open to the end", nullptr, "t = open to the end\n"},
      {"t = \"\" ; lost", kOk, "t", nullptr, nullptr, "t = \n"},  // empty quotes: rest ignored
      {"\t \r", kOk, nullptr, nullptr, nullptr, "\n"},
      {"= v", kOk, nullptr, "v", nullptr, "\n"},  // no topic: the value is not written
      {"t = x\x01\x7f", kOk, "t", "x", nullptr, "t = x\n"},
      {"t = \x80\xff", kOk, "t", "\x80\xff", nullptr, "t = \x80\xff\n"},
      {"garbage", kFailed, nullptr, nullptr, nullptr, "\n"},
      {"  [Next]", kFailed, nullptr, nullptr, nullptr, "\n"},
  };
  for (const auto &c : cases) {
    std::string text = std::string(c.line) + "\n";
    std::FILE *stream = fskit::test::streamOf(text);
    FsIniLine line("old", "old", "old");
    EXPECT_EQ(line.read(stream), c.result) << c.line;
    // A header is left for the next paragraph; any other line is consumed.
    EXPECT_EQ(std::ftell(stream), text.find('[') == 2 ? 0 : long(text.size())) << c.line;
    std::fclose(stream);
    EXPECT_EQ(show(line.topic()), show(c.topic)) << c.line;
    EXPECT_EQ(show(line.value()), show(c.value)) << c.line;
    EXPECT_EQ(show(line.comment()), show(c.comment)) << c.line;
    EXPECT_EQ(written(line), c.writtenBack) << c.line;
  }
  FsIniLine line;
  EXPECT_EQ(line.read(nullptr), kFailed);
  EXPECT_EQ(line.write(nullptr), kFailed);
  std::FILE *stream = fskit::test::streamOf("");
  EXPECT_EQ(line.read(stream), kFailed);
  std::fclose(stream);
}

TEST(IniLine, SettersTrimAsTheirRulesSay) {
  FsIniLine line(" topic \t", "  value \r\n", " \t comment \x01");
  EXPECT_EQ(written(line), " topic =   value\t; comment\n");  // leading blanks kept
  line.setValue(line.value());  // the same text: nothing happens
  EXPECT_STREQ(line.value(), "  value");
  line.setValue(line.value() + 2);  // a text inside the old one
  EXPECT_STREQ(line.value(), "value");
  for (const char *blank : {"", " \t\r\n", static_cast<const char *>(nullptr)}) {
    FsIniLine other("t", "v", "c");
    other.setValue(blank);
    other.setComment(blank);
    EXPECT_EQ(other.value(), nullptr);
    EXPECT_EQ(other.comment(), nullptr);
    EXPECT_EQ(written(other), "t = \n");
  }
  FsIniParagraph paragraph(" keeps\n everything ");
  EXPECT_STREQ(paragraph.name(), " keeps\n everything ");
  paragraph.setName("");
  EXPECT_EQ(paragraph.name(), nullptr);
  EXPECT_EQ(paragraph.grow(0), kFailed);
}

TEST(IniFile, ReadsWhatTheHeadersAndLinesAllow) {
  std::string longValue(1018, 'x');
  struct {
    std::string text, writtenBack;
  } cases[] = {
      {"[A]\nx = 1\n\n[B]\ny = 2\n", "[A]\nx = 1\n\n[B]\ny = 2\n"},
      {"\n \n[A]\n; kept\nx=1;c\n\n", "[A]\n; kept\nx = 1\t; c\n\n"},
      {"; comment first\n[A]\nx = 1\n", ""},
      {"[A]\ngarbage\n\n  [B]\ny = 2\n", "[A]\n[B]\ny = 2\n"},  // a stray line is lost
      {"[A]\ngarbage\nx = 1\n[B]\ny = 2\n", "[A]\n"},          // ... and so is the rest
      {"[A]\n# note\n[B]\n", "[A]\n[B]\n"},
      {"[A]\n[]\n[B]\n", "[A]\n"},
      {"[A] trailing text\nx = 1\n", "[A]\nx = 1\n"},
      {"[A\nx = 1\n", "[A\n]\nx = 1\n"},  // the line feed belongs to the name
      {"[\nx = 1\n", "[\n]\nx = 1\n"},
      {"[A]\n[", "[A]\n"},
      {"[A]\nx = 1\n[A]\ny = 2\n", "[A]\nx = 1\n[A]\ny = 2\n"},
      // 1500 characters: the first 1022 are a line, the rest another.
      {"[A]\nk = " + longValue + "j = 2\n", "[A]\nk = " + longValue + "\nj = 2\n"},
      // Exactly 1022: its line feed comes as a blank line of its own.
      {"[A]\nk = " + longValue + "\n", "[A]\nk = " + longValue + "\n\n"},
  };
  for (const auto &c : cases) {
    auto document = readText(c.text);
    EXPECT_EQ(written(*document), c.writtenBack) << c.text;
  }
  auto document = readText("[A]\nx = 1\n\n[B]\ny = 2\n[A]\nx = 3\nz = 4\n");
  EXPECT_EQ(document->valueOf("A", "z"), nullptr);  // only the first A is looked at
  EXPECT_EQ(document->read(nullptr), kFailed);
  EXPECT_EQ(document->count(), 3);  // a null stream leaves the document alone
  EXPECT_EQ(document->write(nullptr), kFailed);
}
