// SPDX-License-Identifier: MIT
// The lossless document: files written back byte for byte, values set where
// the classic writer puts them, lookups that agree with the C functions, and
// `fskit ini set` on a corpus of real-world and awkward INI files.
#include "ini/lossless.h"

#include <fskit/ini.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "ini/document.h"
#include "tests/support/ini_walk.h"
#include "tests/support/test_support.h"

using fskit::ini::FsIniFile;
using fskit::ini::FsIniLine;
using fskit::ini::lossless::Document;
using fskit::test::readFile;
using fskit::test::runTool;
using fskit::test::TempDir;
using fskit::test::writeFile;

using namespace std::string_literals;

namespace {

#if defined(_WIN32)
const std::string kEnd = "\r\n";
#else
const std::string kEnd = "\n";
#endif

std::string set(const std::string &text, const std::string &paragraph, const std::string &topic,
                const std::string &value, const std::string &comment = "") {
  Document document(text);
  document.setValue(paragraph, topic, value, comment);
  return document.text();
}

// What the C functions find in `text`: with a topic its value ("<none>"
// without one), else every value their walk delivers, as iniWalk gives them.
std::string classic(const TempDir &dir, const std::string &text, const std::string &paragraph = "",
                    const std::string &topic = "") {
  writeFile(dir.file("classic.ini"), text);
  int32_t handle = fsIniReadFile(dir.file("classic.ini").c_str());
  char value[1100], comment[1];
  std::string found = topic.empty() ? fskit::test::iniWalk(handle) : "<none>";
  if (!topic.empty() && fsIniGetValue(handle, paragraph.c_str(), topic.c_str(), value, comment) == 1)
    found = value;
  fsIniReleaseFile(handle);
  return found;
}

std::string losslessWalk(const Document &document) {
  std::string all;
  for (const Document::Entry &entry : document.values())
    if (entry.value) all += entry.paragraph + "|" + entry.topic + "|" + *entry.value + "\n";
  return all;
}

// How many bytes of `text` the C functions' reader takes in before it stops.
long classicReach(const std::string &text) {
  std::unique_ptr<FsIniFile> document(FsIniFile::create("reach.ini"));
  std::FILE *stream = fskit::test::streamOf(text);
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

std::string lineEndOf(const std::string &line) {
  return line.ends_with("\r\n") ? "\r\n" : line.ends_with('\n') ? "\n" : "";
}

// What tells `after` from `before`: "" when the only change is the line of
// `topic` (replaced when `existing`, else added, after the header of a new
// `paragraph` or not, and after the old last line given a line end or not)
// now reading `value`. `lineEnd` receives the offset where that line ends.
std::string unexpectedChange(const std::string &before, const std::string &after,
                             const std::string &paragraph, const std::string &topic,
                             const std::string &value, bool existing, size_t &lineEnd) {
  std::vector<std::string> b = linesOf(before), a = linesOf(after);
  size_t prefix = 0, suffix = 0;
  while (prefix < b.size() && prefix < a.size() && a[prefix] == b[prefix]) ++prefix;
  while (suffix < b.size() - prefix && suffix < a.size() - prefix &&
         a[a.size() - 1 - suffix] == b[b.size() - 1 - suffix])
    ++suffix;
  std::vector<std::string> removed(b.begin() + prefix, b.end() - suffix),
      added(a.begin() + prefix, a.end() - suffix);
  lineEnd = 0;
  for (size_t i = 0; i < a.size() - suffix; ++i) lineEnd += a[i].size();
  if (!existing && removed.size() == 1 && suffix == 0 && lineEndOf(removed[0]).empty() &&
      added.size() > 1 && added[0].starts_with(removed[0]) && !lineEndOf(added[0]).empty() &&
      added[0].size() == removed[0].size() + lineEndOf(added[0]).size())
    removed.clear(), added.erase(added.begin());  // the old last line got a line end
  if (removed.size() != (existing ? 1u : 0u))
    return std::to_string(removed.size()) + " lines removed";
  if (!existing && added.size() == 2 && added[0] == "[" + paragraph + "]" + lineEndOf(added[0]))
    added.erase(added.begin());
  if (added.size() != 1) return std::to_string(added.size()) + " lines added";
  if (existing && lineEndOf(removed[0]) != lineEndOf(added[0])) return "line end changed";
  std::string text = added[0].substr(0, fskit::ini::kLineBuffer - 1);
  FsIniLine line;
  if (line.take(text.data()) != FsIniLine::Kind::kTopic || line.topic() != topic ||
      line.value() == nullptr || line.value() != value)
    return "the line reads " + added[0];
  return "";
}

// What `fskit ini set` takes: the tool refuses other names.
bool toolTakes(const std::string &paragraph, const std::string &topic) {
  auto plain = [](const std::string &text) {
    return !text.empty() && text.find_first_of("\r\n=]") == std::string::npos &&
           text.find_first_of("[;# \t\v\f") != 0 &&
           !std::isspace(static_cast<unsigned char>(text.back()));
  };
  return plain(paragraph) && plain(topic);
}

struct Tally {
  int files = 0, losslessDamaged = 0, classicDamaged = 0;
};

// One file of the corpus: written back unchanged, and set three ways (an
// existing topic, a new one, a new paragraph) by the lossless document, the
// tool and the classic C functions.
void checkFile(const std::string &name, const std::string &text, const TempDir &dir, Tally &tally) {
  SCOPED_TRACE(name);
  ++tally.files;
  Document document(text);
  EXPECT_EQ(document.text(), text);
  bool classicReadsWhole = classicReach(text) == long(text.size()) &&
                           std::ranges::all_of(linesOf(text), [](const std::string &line) {
                             return line.size() < size_t(fskit::ini::kLineBuffer);
                           });
  if (classicReadsWhole) {
    EXPECT_EQ(losslessWalk(document), classic(dir, text));
  }

  struct Target {
    std::string paragraph, topic;
    bool existing;
  };
  std::vector<Target> targets;
  std::vector<Document::Entry> entries = document.values();
  for (const Document::Entry &entry : entries)
    if (entry.value && toolTakes(entry.paragraph, entry.topic)) {
      targets.push_back({entry.paragraph, entry.topic, true});
      break;
    }
  if (!entries.empty() && toolTakes(entries[0].paragraph, "fskitCorpusTopic"))
    targets.push_back({entries[0].paragraph, "fskitCorpusTopic", false});
  targets.push_back({"fskit corpus", "fskitCorpusTopic", false});

  bool lossy = false, classicLossy = false;
  for (const Target &target : targets) {
    SCOPED_TRACE(target.paragraph + " / " + target.topic);
    const std::string value = "corpus value";
    std::string after = set(text, target.paragraph, target.topic, value);
    size_t lineEnd = 0;
    std::string change = unexpectedChange(text, after, target.paragraph, target.topic, value,
                                          target.existing, lineEnd);
    EXPECT_EQ(change, "");
    lossy |= !change.empty();
    EXPECT_EQ(Document(after).value(target.paragraph, target.topic), value);
    // The C functions find the value wherever they read its line.
    bool longLines = std::ranges::any_of(linesOf(after), [](const std::string &line) {
      return line.size() >= size_t(fskit::ini::kLineBuffer);
    });
    if (!longLines && classicReach(after) >= long(lineEnd)) {
      EXPECT_EQ(classic(dir, after, target.paragraph, target.topic), value);
    }

    std::string copy = dir.file("tool.ini");
    writeFile(copy, text);
    auto tool = runTool({"ini", "set", copy, target.paragraph, target.topic, value});
    EXPECT_EQ(tool.status, 0) << tool.err;
    EXPECT_EQ(readFile(copy), after);

    // What the classic reading and writing rules make of the same change.
    writeFile(copy, text);
    int32_t handle = fsIniReadFile(copy.c_str());
    fsIniSetValue(handle, target.paragraph.c_str(), target.topic.c_str(), value.c_str(), "");
    fsIniWriteFile(handle);
    classicLossy |= !unexpectedChange(text, readFile(copy), target.paragraph, target.topic, value,
                                      target.existing, lineEnd)
                         .empty();
  }
  tally.losslessDamaged += lossy;
  tally.classicDamaged += classicLossy;
}

// INI files of the machine this runs on, as many as are found (up to 60).
std::vector<std::filesystem::path> machineFiles() {
  namespace fs = std::filesystem;
  std::vector<fs::path> found;
  auto take = [&](const fs::path &path) {
    std::error_code error;
    if (found.size() < 60 && fs::is_regular_file(path, error) &&
        fs::file_size(path, error) < 262144)
      found.push_back(path);
  };
  auto walk = [&](const fs::path &root, int depth, auto wanted) {
    std::error_code error;
    fs::recursive_directory_iterator it(root, fs::directory_options::skip_permission_denied, error),
        end;
    for (; !error && it != end; it.increment(error)) {
      if (it.depth() >= depth) it.disable_recursion_pending();
      if (wanted(it->path().filename().string())) take(it->path());
    }
  };
  auto conf = [](const std::string &name) { return name.ends_with(".conf"); };
  auto ini = [](const std::string &name) { return name.ends_with(".ini"); };
  auto python = [](const std::string &name) {
    return name == "tox.ini" || name == "setup.cfg" || name == "mypy.ini" || name == "pytest.ini";
  };
  walk("/usr/lib/systemd", 0, conf);
  walk("/etc/systemd", 0, conf);
  walk("/usr/share", 8, ini);
  walk("/etc", 4, ini);
  std::error_code error;
  for (const fs::directory_entry &entry : fs::directory_iterator("/usr/lib", error))
    if (entry.path().filename().string().starts_with("python3")) walk(entry.path(), 6, python);
  return found;
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
  EXPECT_EQ(set("", "P", "t", "v"), "[P]" + kEnd + "t = v" + kEnd);
  EXPECT_EQ(set("[A]\n[B", "B", "t", "v"), "[A]\n[B]\nt = v\n");
  EXPECT_EQ(set("[A]\n", "", "t", "v"), "[A]\n");  // never written by the classic writer either
  // First matches; a byte order mark and lines after "[]" or NUL bytes.
  EXPECT_EQ(set("[A]\nx=1\nx=2\n[A]\nx=3\n", "A", "x", "9"), "[A]\nx = 9\nx=2\n[A]\nx=3\n");
  EXPECT_EQ(set("\xEF\xBB\xBF[A]\nx=1\n", "A", "x", "2"), "\xEF\xBB\xBF[A]\nx = 2\n");
  EXPECT_EQ(set("[]\nx=1\n[A]\0\nx=1\n"s, "A", "x", "2"), "[]\nx=1\n[A]\0\nx = 2\n"s);

  Document document("; first\n[A]\nx = 1\ny\n[A]\nz = 2\n[C]\n t = \"q\" ;\n");
  EXPECT_EQ(document.value("A", "x"), "1");
  EXPECT_EQ(document.value("A", "z"), std::nullopt);  // only the first [A] counts
  EXPECT_EQ(document.value("C", "t"), "q");
  EXPECT_EQ(losslessWalk(document), "A|x|1\nA|x|1\nC|t|q\n");
}

TEST(IniLossless, CorpusKeepsEveryOtherByte) {
  TempDir dir;
  Tally tally;
  for (const auto &entry :
       std::filesystem::directory_iterator(std::string(FSKIT_SOURCE_DIR) + "/tests/ini/corpus"))
    checkFile(entry.path().filename().string(), readFile(entry.path().string()), dir, tally);
  int handMade = tally.files;
  EXPECT_GE(handMade, 13);
  // Files of this machine, copied first: they may change or go meanwhile.
  TempDir copies;
  int copied = 0;
  for (const std::filesystem::path &path : machineFiles()) {
    std::string copy = copies.file(std::to_string(copied++) + "-" + path.filename().string());
    std::error_code error;
    if (std::filesystem::copy_file(path, copy, error))
      checkFile(path.string(), readFile(copy), dir, tally);
  }
  EXPECT_EQ(tally.losslessDamaged, 0);
  std::printf(
      "corpus: %d files (%d hand-made); the classic writer changed other lines in %d, "
      "the lossless one in %d\n",
      tally.files, handMade, tally.classicDamaged, tally.losslessDamaged);
}
