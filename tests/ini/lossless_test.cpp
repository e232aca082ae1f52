// SPDX-License-Identifier: MIT
// The lossless document: byte-exact files, values set where the classic writer puts them, on a
// corpus; its listing, removal, and quiet reading and writing.
#include "ini/lossless.h"

#include <fskit/ini.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "ini/document.h"
#include "tests/support/ini_walk.h"
#include "tests/support/test_support.h"

using namespace fskit::ini;
using lossless::Document;
using namespace fskit::test;

using namespace std::string_literals;

namespace {

std::string set(const std::string &text, const std::string &paragraph, const std::string &topic,
                const std::string &value, const std::string &comment = "") {
  Document document(text);
  document.setValue(paragraph, topic, value, comment);
  return document.text();
}

// What the C functions find in `text`: with a topic its value ("<none>" without), else iniWalk.
std::string classic(const TempDir &dir, const std::string &text, const std::string &paragraph = "",
                    const std::string &topic = "") {
  writeFile(dir.file("classic.ini"), text);
  int32_t handle = fsIniReadFile(dir.file("classic.ini").c_str());
  char value[1100], comment[1];
  std::string found = topic.empty() ? iniWalk(handle) : "<none>";
  if (!topic.empty() && fsIniGetValue(handle, paragraph.c_str(), topic.c_str(), value, comment) == 1)
    found = value;
  fsIniReleaseFile(handle);
  return found;
}

// How many bytes of `text` the C functions' reader takes in before it stops.
long classicReach(const std::string &text) {
  std::unique_ptr<FsIniFile> document(FsIniFile::create("reach.ini"));
  std::FILE *stream = streamOf(text);
  document->read(stream);
  long reach = std::ftell(stream);
  std::fclose(stream);
  return reach;
}

std::vector<std::string> linesOf(const std::string &text) {
  std::vector<std::string> lines;
  for (size_t start = 0, end; start < text.size(); start = end) {
    end = text.find('\n', start);
    end = end == std::string::npos ? text.size() : end + 1;
    lines.push_back(text.substr(start, end - start));
  }
  return lines;
}

bool hasLongLine(const std::string &text) {
  auto isLong = [](const std::string &line) { return line.size() >= size_t(kLineBuffer); };
  return std::ranges::any_of(linesOf(text), isLong);
}

std::string lineEndOf(const std::string &line) {
  return line.ends_with("\r\n") ? "\r\n" : line.ends_with('\n') ? "\n" : "";
}

// "" when `after` differs from `before` only in the line of `topic` (replaced when `existing`,
// else added, with a new paragraph's header, after the old last line given a line end) now
// reading `value`; else what differs. `lineEnd` receives the offset where that line ends.
std::string unexpectedChange(const std::string &before, const std::string &after,
                             const std::string &paragraph, const std::string &topic,
                             const std::string &value, bool existing, size_t &lineEnd) {
  std::vector<std::string> b = linesOf(before), a = linesOf(after);
  auto [bFirst, aFirst] = std::mismatch(b.begin(), b.end(), a.begin(), a.end());
  auto [bLast, aLast] = std::mismatch(b.rbegin(), std::make_reverse_iterator(bFirst), a.rbegin(),
                                      std::make_reverse_iterator(aFirst));
  std::vector<std::string> removed(bFirst, bLast.base()), added(aFirst, aLast.base());
  lineEnd = 0;
  for (auto line = a.begin(); line != aLast.base(); ++line) lineEnd += line->size();
  if (!existing && removed.size() == 1 && bLast == b.rbegin() && lineEndOf(removed[0]).empty() &&
      added.size() > 1 && added[0].starts_with(removed[0]) && !lineEndOf(added[0]).empty() &&
      added[0].size() == removed[0].size() + lineEndOf(added[0]).size())
    removed.clear(), added.erase(added.begin());  // the old last line got a line end
  if (removed.size() != (existing ? 1u : 0u))
    return std::to_string(removed.size()) + " lines removed";
  if (!existing && added.size() == 2 && added[0] == "[" + paragraph + "]" + lineEndOf(added[0]))
    added.erase(added.begin());
  if (added.size() != 1) return std::to_string(added.size()) + " lines added";
  if (existing && lineEndOf(removed[0]) != lineEndOf(added[0])) return "line end changed";
  std::string text = added[0].substr(0, kLineBuffer - 1);
  FsIniLine line;
  if (line.take(text.data()) != FsIniLine::Kind::kTopic || line.topic() != topic ||
      line.value() == nullptr || line.value() != value)
    return "the line reads " + added[0];
  return "";
}

// A corpus file: written back unchanged, and set three ways that the C functions read back.
void checkFile(const std::string &name, const std::string &text, const TempDir &dir) {
  SCOPED_TRACE(name);
  Document document(text);
  EXPECT_EQ(document.text(), text);
  if (classicReach(text) == long(text.size()) && !hasLongLine(text)) {
    std::string walk;
    for (const Document::Entry &entry : document.values())
      if (entry.value) walk += entry.paragraph + "|" + entry.topic + "|" + *entry.value + "\n";
    EXPECT_EQ(walk, classic(dir, text));
  }

  auto checkSet = [&](const std::string &paragraph, const std::string &topic, bool existing) {
    SCOPED_TRACE(paragraph + " / " + topic);
    const std::string value = "corpus value";
    std::string after = set(text, paragraph, topic, value);
    size_t lineEnd = 0;
    EXPECT_EQ(unexpectedChange(text, after, paragraph, topic, value, existing, lineEnd), "");
    EXPECT_EQ(Document(after).value(paragraph, topic), value);
    // The C functions find the value wherever they read its line.
    if (!hasLongLine(after) && classicReach(after) >= long(lineEnd)) {
      EXPECT_EQ(classic(dir, after, paragraph, topic), value);
    }
  };
  std::vector<Document::Entry> entries = document.values();
  auto valued = std::ranges::find_if(entries, [](const auto &e) { return e.value.has_value(); });
  if (valued != entries.end()) checkSet(valued->paragraph, valued->topic, true);
  if (!entries.empty()) checkSet(entries[0].paragraph, "fskitCorpusTopic", false);
  checkSet("fskit corpus", "fskitCorpusTopic", false);
}

}  // namespace

TEST(IniLossless, SetsOneLineWhereTheClassicWriterWould) {
  // In place, keeping the line end and the comment; a blank comment removes it.
  EXPECT_EQ(set("[A]\r\nx=1 ; c\r\ny=2\r\n", "A", "x", "5"), "[A]\r\nx = 5\t; c\r\ny=2\r\n");
  EXPECT_EQ(set("[A]\r\nx=1 ; c\r\ny=2", "A", "y", "a;b", " "), "[A]\r\nx=1 ; c\r\ny = \"a;b\"");
  // A new topic after what the classic reader takes into the paragraph.
  EXPECT_EQ(set("[A]\nx=1\n\nno equals\nw=2\n[B]\n", "A", "n", "v"),
            "[A]\nx=1\n\nn = v\nno equals\nw=2\n[B]\n");
  EXPECT_EQ(set("# c\n[A]\r\nx=1\r\n[B]\r\n", "A", "n", "v", "why"),
            "# c\n[A]\r\nx=1\r\nn = v\t; why\r\n[B]\r\n");
  // A new paragraph at the end, after a line end given to the last line.
  EXPECT_EQ(set("[A]\r\n[]\nx=1", "B", "t", "v"), "[A]\r\n[]\nx=1\n[B]\nt = v\n");
#if defined(_WIN32)
  EXPECT_EQ(set("", "P", "t", "v"), "[P]\r\nt = v\r\n");
#else
  EXPECT_EQ(set("", "P", "t", "v"), "[P]\nt = v\n");
#endif
  EXPECT_EQ(set("[A]\n[B", "B", "t", "v"), "[A]\n[B]\nt = v\n");
  EXPECT_EQ(set("[A]\n", "", "t", "v"), "[A]\n");  // never written by the classic writer either
  // A byte order mark; lines after "[]" or NUL bytes (the corpus has first matches).
  EXPECT_EQ(set("\xEF\xBB\xBF[A]\nx=1\n", "A", "x", "2"), "\xEF\xBB\xBF[A]\nx = 2\n");
  EXPECT_EQ(set("[]\nx=1\n[A]\0\nx=1\n"s, "A", "x", "2"), "[]\nx=1\n[A]\0\nx = 2\n"s);

  Document document("; first\n[A]\nx = 1\ny\n[A]\nz = 2\n[C]\n t = \"q\" ;\n");
  EXPECT_EQ(document.value("A", "z"), std::nullopt);  // only the first [A] counts
  EXPECT_EQ(document.value("C", "t"), "q");
}

TEST(IniLossless, CorpusKeepsEveryOtherByte) {
  TempDir dir;
  int files = 0;
  for (const auto &entry :
       std::filesystem::directory_iterator(std::string(FSKIT_SOURCE_DIR) + "/tests/ini/corpus")) {
    checkFile(entry.path().filename().string(), readFile(entry.path().string()), dir);
    ++files;
  }
  EXPECT_GE(files, 13);
}

namespace {

const std::string kText =
    "; head\n[A]\nx = 1 ; one\n\n; note\ny=2\nx = shadowed\n[B]\nz = 3\n[A]\nw = 4\n[]\nq = 5\n";

TEST(LosslessListing, ParagraphsAndTopicsInFileOrderEachOnceAndTheirRemoval) {
  Document document(kText);
  EXPECT_EQ(document.paragraphs(), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(document.topics("A"), (std::vector<std::string>{"x", "y"}));
  EXPECT_EQ(document.topics("B"), (std::vector<std::string>{"z"}));
  EXPECT_TRUE(document.topics("C").empty());
  ASSERT_TRUE(document.removeTopic("A", "x"));
  // The second x of the paragraph now is the first: the one value() reads.
  EXPECT_EQ(document.value("A", "x"), "shadowed");
  EXPECT_FALSE(document.removeTopic("A", "nothing"));
  EXPECT_FALSE(document.removeTopic("C", "x"));
  ASSERT_TRUE(document.removeParagraph("B"));  // up to the next header
  EXPECT_EQ(document.text(), "; head\n[A]\n\n; note\ny=2\nx = shadowed\n[A]\nw = 4\n[]\nq = 5\n");
  ASSERT_TRUE(document.removeParagraph("A"));  // the first of the two, its blank and comment too
  EXPECT_EQ(document.text(), "; head\n[A]\nw = 4\n[]\nq = 5\n");
  EXPECT_FALSE(document.removeParagraph("B"));
}

TEST(LosslessQuiet, ProblemsComeBackInsteadOfBeingPrinted) {
  TempDir dir;
  std::string problem, missing = dir.file("missing/none.ini");
  EXPECT_EQ(captureStderr([&] {
              EXPECT_FALSE(Document::readFile(missing.c_str(), &problem));
              EXPECT_EQ(problem, "Error opening ini file " + missing);
              problem.clear();
              EXPECT_FALSE(Document(kText).writeFile(missing.c_str(), &problem));
              EXPECT_EQ(problem, "Error opening ini file " + missing);
            }),
            "");
  // Without a place for the problem the message is printed, as before.
  EXPECT_EQ(captureStderr([&] { EXPECT_FALSE(Document::readFile(missing.c_str())); }),
            "Error opening ini file " + missing + "\n");

  writeFile(dir.file("a.ini"), kText);
  problem.clear();
  auto read = Document::readFile(dir.file("a.ini").c_str(), &problem);
  ASSERT_TRUE(read);
  EXPECT_TRUE(read->writeFile(dir.file("b.ini").c_str(), &problem));
  EXPECT_EQ(problem, "");
  EXPECT_EQ(readFile(dir.file("b.ini")), kText);
}

}  // namespace
