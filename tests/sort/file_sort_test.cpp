// SPDX-License-Identifier: MIT
// fsStrSort and `fskit sort`: the printed texts, the output against GNU sort
// on generated files, and the failures, after none of which a work file may
// remain.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "sort/file_sort_internal.h"
#include "tests/support/test_support.h"

using fskit::test::readText;
using fskit::test::runTool;
using fskit::test::TempDir;
using fskit::test::writeFile;

namespace {

struct Sorted {
  long result;
  std::string printed, output;
};

Sorted sortFile(const TempDir &dir, const std::string &content, long buffer, bool keep,
                bool counts, std::string output = "", std::string prefix = "") {
  std::string input = dir.file("in.txt");
  if (output.empty()) output = dir.file("out.txt");
  if (prefix.empty()) prefix = dir.path() + "/";
  fskit::test::writeFile(input, content);
  bool inDir = output.rfind(dir.path(), 0) == 0;  // never remove or read /dev/full
  if (inDir) std::filesystem::remove(output);
  Sorted s;
  s.printed = fskit::test::captureStdout([&] {
    s.result = fsStrSort(input.c_str(), output.c_str(), prefix.c_str(), buffer, keep, counts);
  });
  // Read as text: the outputs are text files of the platform.
  s.output = inDir && fskit::test::fileExists(output) ? fskit::test::readText(output) : "<none>";
  return s;
}

int workFilesLeft(const TempDir &dir) {
  int left = 0;
  for (const auto &entry : std::filesystem::directory_iterator(dir.path()))
    left += entry.path().filename().string().rfind("sort_", 0) == 0;
  return left;
}

std::string gnuSort(const TempDir &dir, const std::string &content) {
  fskit::test::writeFile(dir.file("gnu.txt"), content);
  std::string command = "export LC_ALL=C; sort " + dir.file("gnu.txt") + " > " + dir.file("gnu.out");
  EXPECT_EQ(std::system(command.c_str()), 0);
  return fskit::test::readFile(dir.file("gnu.out"));
}

// Lines drawn from a small vocabulary, so that many repeat; with tabs,
// blanks and bytes above 0x7f, and the empty line.
std::string generatedLines(int lines, size_t longest, unsigned seed) {
  std::mt19937 random(seed);
  const std::string alphabet = "abcABZ09 \t~\x80\xe9\xff";
  std::vector<std::string> vocabulary(300);
  for (auto &word : vocabulary)
    for (size_t k = random() % (longest + 1); k > 0; --k) word += alphabet[random() % alphabet.size()];
  std::string text;
  for (int k = 0; k < lines; ++k) text += vocabulary[random() % vocabulary.size()] + "\n";
  return text;
}

// "text count" lines into text -> count (the counts of a text written more
// than once added up).
std::map<std::string, long> countsOf(const std::string &output) {
  std::map<std::string, long> counts;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);)
    counts[line.substr(0, line.rfind(' '))] += std::stol(line.substr(line.rfind(' ') + 1));
  return counts;
}

}  // namespace

TEST(FileSort, PrintsProgressAndMergesChunksAsDocumented) {
  TempDir dir;
  Sorted keep = sortFile(dir, "c\nb\na\nb\n", 4, true, false);
  std::string work0 = dir.path() + "/sort_0.tmp", work1 = dir.path() + "/sort_1.tmp";
  EXPECT_EQ(keep.printed, "Sorting file " + dir.file("in.txt") + " with 8 bytes, 4 bytes at a time\n"
                          "Indexing 2 records of 4 bytes ...\nSorting 2 records ...\n"
                          "Writing output file " + work0 + " ...\n"
                          "Indexing 2 records of 4 bytes ...\nSorting 2 records ...\n"
                          "Writing output file " + work1 + " ...\n"
                          "Merging 2 work files ...\n4 records written\n");
  EXPECT_EQ(keep.output, "a\nb\nb\nc\n");
  EXPECT_EQ(keep.result, 4);
  Sorted collapsed = sortFile(dir, "c\nb\na\nb\n", 4, false, false);
  EXPECT_EQ(collapsed.output, "a\nb\nc\n");
  EXPECT_EQ(collapsed.result, 3);
  // In memory: the output is the only destination; empty lines vanish when
  // collapsing, and bytes after the last newline are dropped.
  // (The texts of an in-memory sort: FileSort.ToolSortsWithTheLibraryTextsOnStandardError.)
  EXPECT_EQ(sortFile(dir, "b\n\na\nb\n\nzz", 0, false, true).output, "a 1\nb 2\n");
  Sorted everything = sortFile(dir, "b\n\na\nb\n\nzz", 1000, true, true);
  EXPECT_EQ(everything.output, "\n\na\nb\nb\n");
  EXPECT_EQ(everything.result, 5);
  EXPECT_EQ(workFilesLeft(dir), 0);
}

// In memory the sort is checked against a reference sort by bytes
// (shared_prefix_test.cpp); here in chunks and merge passes.
TEST(FileSort, MatchesGnuSortInChunksAndInMergePasses) {
#if defined(_WIN32)
  GTEST_SKIP() << "GNU sort is run through the POSIX shell";
#endif
  TempDir dir;
  for (size_t longest : {30, 4000}) {
    std::string text = generatedLines(longest > 100 ? 400 : 6000, longest, unsigned(longest));
    // The merge compares lines with their newline, so a tab (below the
    // newline) after a line's text orders it before that text: GNU sort
    // agrees with a chunked sort only on lines without such bytes.
    std::replace(text.begin(), text.end(), '\t', '\v');
    long size = long(text.size());
    // Ten chunks, and enough chunks for several merge passes.
    for (long buffer : {size / 10, size / 45}) {
      SCOPED_TRACE(testing::Message() << "longest " << longest << " buffer " << buffer);
      // GNU sort gives the order; the collapsed output and the counts follow from it.
      std::string sorted = gnuSort(dir, text), unique;
      std::map<std::string, long> counts;
      std::istringstream lines(sorted);
      for (std::string line; std::getline(lines, line);)
        if (!line.empty() && counts[line]++ == 0) unique += line + "\n";  // the empty line vanishes
      EXPECT_EQ(sortFile(dir, text, buffer, true, false).output, sorted);
      EXPECT_EQ(sortFile(dir, text, buffer, false, false).output, unique);
      // Per chunk counts; "x 2" from two chunks is one line, so no more than
      // the true count, and every text is there.
      std::map<std::string, long> ours = countsOf(sortFile(dir, text, buffer, false, true).output);
      ASSERT_EQ(ours.size(), counts.size());
      for (auto [line, count] : ours) EXPECT_LE(count, counts[line]);
      EXPECT_EQ(workFilesLeft(dir), 0);
    }
  }
}

TEST(FileSort, FailuresPrintTheirTextAndLeaveNoWorkFile) {
  TempDir dir;
  std::string in = dir.file("in.txt"), missing = dir.path() + "/no/out.txt";
  struct Case {
    std::string content;
    long buffer;
    std::string output, prefix, lastLines;
  };
  std::vector<Case> cases = {
      {"", 0, "", "", "Sorting file " + in + " with 0 bytes, in memory 0\n0 records written\n"},
      {"b\na\n", 0, missing, "", "Cannot open file " + missing + "\n0 records written\n"},
      {"b\na\n", 2, missing, "", "Cannot open output file " + missing + "\n0 records written\n"},
      {"b\na\n", 2, "", dir.path() + "/no/", "Cannot open file " + dir.path() + "/no/sort_0.tmp\n0 records written\n"},
  };
#if !defined(_WIN32)  // a device that fails every write
  cases.push_back({"b\na\n", 0, "/dev/full", "", "Error writing output file\n"});
  cases.push_back({"b\na\n", 2, "/dev/full", "", "Error writing output file\n"});
#endif
  for (const Case &c : cases) {
    SCOPED_TRACE(c.lastLines);
    Sorted s = sortFile(dir, c.content, c.buffer, true, false, c.output, c.prefix);
    EXPECT_EQ(s.result, 0);
    ASSERT_GE(s.printed.size(), c.lastLines.size());
    EXPECT_EQ(s.printed.substr(s.printed.size() - c.lastLines.size()), c.lastLines);
    if (c.output.empty()) {
      EXPECT_EQ(s.output, "<none>");
    }
    EXPECT_EQ(workFilesLeft(dir), 0);
  }
  for (std::string unreadable : {dir.file("absent"), dir.path()}) {
    std::string printed = fskit::test::captureStdout([&] {
      EXPECT_EQ(fsStrSort(unreadable.c_str(), dir.file("out").c_str(), "", 0, 1, 0), 0);
    });
    EXPECT_EQ(printed, "Cannot open input file " + unreadable + "\n");
  }
  // A work file left by an earlier sort with the same prefix goes at the start.
  fskit::test::writeFile(dir.file("sort_7.tmp"), "old\n");
  sortFile(dir, "x\n", 0, true, false);
  EXPECT_EQ(workFilesLeft(dir), 0);
  // A line longer than the buffer ends the chunk phase.
  Sorted stopped = sortFile(dir, "b\na\nlong line\nc\n", 4, true, false);
  EXPECT_EQ(stopped.output, "a\nb\n");
}

TEST(FileSort, ToolSortsWithTheLibraryTextsOnStandardError) {
  TempDir dir;
  fskit::test::writeFile(dir.file("in.txt"), "b\na\nb\n");
  auto result = fskit::test::runTool({"sort", "in.txt", "out.txt", "--count"}, "", dir.path());
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "Sorting file in.txt with 6 bytes, in memory 6\nIndexing 3 records of 6 bytes ...\n"
                        "Sorting 3 records ...\nWriting output file out.txt ...\n2 records written\n");
  EXPECT_EQ(fskit::test::readText(dir.file("out.txt")), "a 1\nb 2\n");
  result = fskit::test::runTool({"sort", "in.txt", "sorted.txt", "--buffer", "2", "--prefix", "w_"}, "", dir.path());
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(fskit::test::readText(dir.file("sorted.txt")), "a\nb\nb\n");
  EXPECT_EQ(fskit::test::runTool({"sort", "in.txt"}).status, 2);
  EXPECT_EQ(fskit::test::runTool({"sort", "in.txt", "out", "--buffer", "x"}).status, 2);
  EXPECT_EQ(fskit::test::runTool({"sort", "in.txt", "out", "--prefix", "../x"}).status, 2);
}

// The library removes files named like its work files under its prefix: the
// tool gives it a directory of its own, so that no file of the user's is
// ever among them, whatever it is called, input and output included.
TEST(FileSort, ToolRemovesNothingItDidNotCreate) {
  TempDir dir;
  const std::string lines = "d\nb\na\nc\n";
  for (int n : {0, 3, 5, 19}) fskit::test::writeFile(dir.file("sort_" + std::to_string(n) + ".tmp"), lines);
  auto result = fskit::test::runTool({"sort", "sort_5.tmp", "out.txt", "--buffer", "4"}, "", dir.path());
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(fskit::test::readText(dir.file("out.txt")), "a\nb\nc\nd\n");
  result = fskit::test::runTool({"sort", "sort_0.tmp", "sort_3.tmp", "--buffer", "4"}, "", dir.path());
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(fskit::test::readText(dir.file("sort_3.tmp")), "a\nb\nc\nd\n");
  for (int n : {0, 5, 19}) EXPECT_EQ(fskit::test::readFile(dir.file("sort_" + std::to_string(n) + ".tmp")), lines);
  // The work directory goes too, and the work files are made where asked.
  TempDir work;
  result = fskit::test::runTool({"sort", "sort_0.tmp", "out.txt", "--buffer", "4", "--temporary-directory", work.path()},
                                "", dir.path());
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.err.find("Writing output file " + work.path()), std::string::npos) << result.err;
  EXPECT_TRUE(std::filesystem::is_empty(work.path()));
  result = fskit::test::runTool({"sort", "sort_0.tmp", "out.txt", "--temporary-directory", dir.file("absent")},
                                "", dir.path());
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("fskit sort: cannot make a work directory in "), std::string::npos) << result.err;
}

// A sort that could not write every line fails, and leaves the old output.
TEST(FileSort, ToolFailsWhenLinesAreMissingAndKeepsTheOldOutput) {
  TempDir dir;
  fskit::test::writeFile(dir.file("in.txt"), "b\na\nlong line\nc\nd\ne\n");
  fskit::test::writeFile(dir.file("out.txt"), "precious\n");
  auto result = fskit::test::runTool({"sort", "in.txt", "out.txt", "--buffer", "4"}, "", dir.path());
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("fskit sort: stopped early, out.txt left as it was: a line longer than the sort "
                            "buffer (4 bytes)"),
            std::string::npos)
      << result.err;
  EXPECT_EQ(fskit::test::readFile(dir.file("out.txt")), "precious\n");
  result = fskit::test::runTool({"sort", "absent.txt", "out.txt"}, "", dir.path());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(fskit::test::readFile(dir.file("out.txt")), "precious\n");
  // Nothing of the sort is left beside the output.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);
}

// The internal entry point behind the tool: the same sort and lines as
// fsStrSort, sent where it is told, and an outcome that tells a stop or a
// failure from a complete sort.
TEST(FileSort, InternalEntryTellsTheOutcomeAndSendsItsLinesWhereAsked) {
  TempDir dir;
  struct Heard {
    std::string lines, problems;
  };
  auto hear = [](void *context, const char *line, bool problem) {
    auto *heard = static_cast<Heard *>(context);
    (problem ? heard->problems : heard->lines) += std::string(line) + "\n";
  };
  auto run = [&](const std::string &content, long buffer, Heard &heard, bool replace,
                 std::string input = "") {
    if (input.empty()) fskit::test::writeFile(input = dir.file("in.txt"), content);
    fskit::sort::FileSortRequest request;
    std::string output = dir.file("out.txt"), prefix = dir.path() + "/";
    request.input = input.c_str();
    request.output = output.c_str();
    request.prefix = prefix.c_str();
    request.bufferSize = buffer;
    request.progress = hear;
    request.progressContext = &heard;
    request.replaceOutput = replace;
    return fskit::sort::sortFile(request);
  };
  // (Its lines of a complete sort, on the tool's standard error: the tool tests.)
  Heard stopped;
  fskit::test::writeFile(dir.file("out.txt"), "old\n");
  fskit::sort::FileSortResult result = run("b\na\nlong line\nc\n", 4, stopped, true);
  EXPECT_EQ(result.outcome, fskit::sort::FileSortOutcome::kIncomplete);
  EXPECT_EQ(result.lines, 2);
  EXPECT_NE(std::string(result.reason).find("longer than the sort buffer (4 bytes) at byte "), std::string::npos)
      << result.reason;
  EXPECT_EQ(fskit::test::readFile(dir.file("out.txt")), "old\n");
  Heard failed;
  std::string absent = dir.file("absent.txt");
  result = run("", 0, failed, true, absent);
  EXPECT_EQ(result.outcome, fskit::sort::FileSortOutcome::kFailed);
  EXPECT_EQ(failed.problems, "Cannot open input file " + absent + "\n");
  EXPECT_STREQ(result.reason, ("Cannot open input file " + absent).c_str());
  EXPECT_EQ(fskit::test::readFile(dir.file("out.txt")), "old\n");
  Heard replaced;
  result = run("d\nb\na\nc\nb\n", 0, replaced, true);
  EXPECT_EQ(result.outcome, fskit::sort::FileSortOutcome::kComplete);
  EXPECT_EQ(result.lines, 5);
  EXPECT_EQ(replaced.problems, "");
  EXPECT_EQ(fskit::test::readText(dir.file("out.txt")), "a\nb\nb\nc\nd\n");
  EXPECT_NE(replaced.lines.find("Writing output file " + dir.file("out.txt") + " ..."), std::string::npos);
}

TEST(FileSort, MergeComparesWholeLinesWithTheirNewline) {
  struct Case {
    const char *input;
    long buffer;
    bool keep, counts;
    const char *output;
  };
  const Case cases[] = {
      // The merge took "a" (a prefix) before "a\tb"; with the newline, '\t' < '\n'.
      {"a\na\tb\n", 4, true, false, "a\tb\na\n"},
      {"a\tb\na\n", 4, true, false, "a\tb\na\n"},
      // A byte 0x01 after the common part also sorts before the newline.
      {"ab\nab\x01z\n", 5, true, false, "ab\x01z\nab\n"},
      // Bytes above the newline still put the shorter line first.
      {"a\nab\n", 3, true, false, "a\nab\n"},
      // Counted lines ordered by their text first ("a 6" before "a 1 1"); the
      // whole line "a 1 1" is smaller.
      {"a\na\na\na\na\na\na 1\n", 12, false, true, "a 1 1\na 6\n"},
      // Same for a tab: "a\t 1" is below "a 2" as a whole line.
      {"a\na\na\tx\n", 4, false, true, "a\tx 1\na 2\n"},
  };
  TempDir dir;
  const std::string input = dir.file("in.txt"), output = dir.file("out.txt");
  for (const Case &c : cases) {
    SCOPED_TRACE(c.input);
    auto sort = [&] {
      fskit::test::captureStdout([&] {
        fsStrSort(input.c_str(), output.c_str(), (dir.path() + "/").c_str(), c.buffer, c.keep, c.counts);
      });
    };
    // Without CR a text stream's seek back on Windows miscounted, and the
    // chunk loop could come back to where a chunk began and never end.
    fskit::test::writeFile(input, c.input);
    sort();
    fskit::test::writeText(input, c.input);  // CR LF on Windows, where the chunks seek back
    sort();
    EXPECT_EQ(fskit::test::readText(output), c.output);
  }
}

#if !defined(_WIN32)
TEST(FileSort, InputBeyond4GiB) {
  // A 32-bit build took the input's size through a long, wrapped (4 GiB + 4
  // bytes became 4) or, before large-file support, could not stat it at all.
  TempDir dir;
  std::string input = dir.file("in.txt"), output = dir.file("out.txt");
  fskit::test::writeFile(input, "b\na\n");
  std::filesystem::resize_file(input, (uintmax_t(1) << 32) + 4);  // a hole of NULs
  std::string progress = fskit::test::captureStdout([&] {
    fsStrSort(input.c_str(), output.c_str(), (dir.path() + "/").c_str(), 16, 1, 0);
  });
  EXPECT_NE(progress.find("with 4294967300 bytes, 16 bytes at a time"), std::string::npos)
      << progress;
  EXPECT_EQ(fskit::test::readText(output), "a\nb\n");
}
#endif

TEST(SortTool, StandardInputAndOutput) {
  TempDir dir, work;
  std::string in = dir.file("in.txt"), out = dir.file("out.txt");
  writeFile(in, "pear\napple\npear\n");
  const std::string sorted = "apple\npear\npear\n";
  auto both = runTool({"sort", "-", "-", "--temporary-directory", work.path()}, "b\nc\na\n");
  EXPECT_EQ(both.status, 0) << both.err;
  EXPECT_EQ(both.out, "a\nb\nc\n");
  auto fromStdin = runTool({"sort", "-", out}, "pear\napple\npear\n");
  EXPECT_EQ(fromStdin.status, 0) << fromStdin.err;
  EXPECT_EQ(fromStdin.out, "");
  EXPECT_EQ(readText(out), sorted);
  auto toStdout = runTool({"sort", in, "-", "--count"});
  EXPECT_EQ(toStdout.status, 0) << toStdout.err;
  EXPECT_EQ(toStdout.out, "apple 1\npear 2\n");
  // The work directory is left empty: the copies of the streams are gone.
  runTool({"sort", "-", "-", "--temporary-directory", work.path()}, "x\n");
  EXPECT_EQ(runTool({"ls", work.path()}).out, "path\tname\textension\n");
}

TEST(SortTool, FailuresGiveTheSystemsReason) {
  TempDir dir;
  auto missing = runTool({"sort", dir.file("none"), "-"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.out, "");
  EXPECT_EQ(missing.err, "fskit sort: cannot open input file " + dir.file("none") +
                             ": No such file or directory\n");
  auto directory = runTool({"sort", dir.path(), dir.file("out")});
  EXPECT_EQ(directory.status, 1);
  EXPECT_EQ(directory.err,
            "fskit sort: cannot open input file " + dir.path() + ": Is a directory\n");
  // A line longer than the buffer stops the sort; nothing reaches stdout.
  auto stopped = runTool({"sort", "-", "-", "--buffer", "4"}, "a\nlonger line\n");
  EXPECT_EQ(stopped.status, 1);
  EXPECT_EQ(stopped.out, "");
}
