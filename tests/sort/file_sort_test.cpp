// SPDX-License-Identifier: MIT
// fsStrSort and `fskit sort`: the printed texts, the output in chunks and merge
// passes, and the failures, after none of which a work file may remain.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

using namespace fskit::test;

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
  writeFile(input, content);
  bool inDir = output.rfind(dir.path(), 0) == 0;  // never remove or read /dev/full
  if (inDir) std::filesystem::remove(output);
  Sorted s;
  s.printed = captureStdout([&] {
    s.result = fsStrSort(input.c_str(), output.c_str(), prefix.c_str(), buffer, keep, counts);
  });
  // Read as text: the outputs are text files of the platform.
  s.output = inDir && fileExists(output) ? readText(output) : "<none>";
  return s;
}

int workFilesLeft(const TempDir &dir) {
  int left = 0;
  for (const auto &entry : std::filesystem::directory_iterator(dir.path()))
    left += entry.path().filename().string().rfind("sort_", 0) == 0;
  return left;
}

// Lines from a small vocabulary (many repeat) of words sharing prefixes (around the eight bytes a
// key carries, and of `longest` bytes) and ending in up to three more: blanks, bytes above 0x7f,
// the empty line, none below the newline (the merge orders "a\tb" before "a").
std::vector<std::string> generatedLines(int lines, size_t longest, unsigned seed) {
  std::mt19937 random(seed);
  const std::string alphabet = "abcABZ09 \v~\x80\xe9\xff";
  std::string stem;
  for (size_t k = 0; k < longest; ++k) stem += alphabet[random() % alphabet.size()];
  std::vector<std::string> vocabulary(300), out;
  for (auto &word : vocabulary) {
    word = stem.substr(0, std::array<size_t, 8>{0, 1, 7, 8, 9, 16, 17, longest}[random() % 8]);
    for (size_t k = random() % 4; k > 0; --k) word += alphabet[random() % alphabet.size()];
  }
  for (int k = 0; k < lines; ++k) out.push_back(vocabulary[random() % vocabulary.size()]);
  return out;
}

ToolResult expectTool(const std::vector<std::string> &args, int status, const std::string &input = "",
                      const std::string &workDir = "") {
  ToolResult result = runTool(args, input, workDir);
  EXPECT_EQ(result.status, status) << result.err;
  return result;
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
  // In memory: empty lines vanish when collapsing, and bytes after the last
  // newline are dropped. (Its texts: SortTool.ArgumentsStreamsAndLibraryTexts.)
  EXPECT_EQ(sortFile(dir, "b\n\na\nb\n\nzz", 0, false, true).output, "a 1\nb 2\n");
  Sorted everything = sortFile(dir, "b\n\na\nb\n\nzz", 1000, true, true);
  EXPECT_EQ(everything.output, "\n\na\nb\nb\n");
  EXPECT_EQ(everything.result, 5);
  EXPECT_EQ(workFilesLeft(dir), 0);
}

// In memory the sort is checked against a reference sort by bytes
// (SharedPrefixSort in sort_test.cpp); here in chunks and merge passes.
TEST(FileSort, MatchesAByteSortInChunksAndInMergePasses) {
  TempDir dir;
  for (size_t longest : {30, 4000}) {
    std::vector<std::string> lines = generatedLines(longest > 100 ? 400 : 6000, longest, unsigned(longest));
    std::string text, sorted, unique;
    for (const std::string &line : lines) text += line + "\n";
    std::sort(lines.begin(), lines.end());  // std::string compares unsigned bytes
    std::map<std::string, long> counts;
    for (const std::string &line : lines) {
      sorted += line + "\n";
      if (!line.empty() && counts[line]++ == 0) unique += line + "\n";  // the empty line vanishes
    }
    // Ten chunks, and enough chunks for several merge passes.
    for (long buffer : {long(text.size()) / 10, long(text.size()) / 45}) {
      SCOPED_TRACE(testing::Message() << "longest " << longest << " buffer " << buffer);
      EXPECT_EQ(sortFile(dir, text, buffer, true, false).output, sorted);
      EXPECT_EQ(sortFile(dir, text, buffer, false, false).output, unique);
      // Counts per chunk: "x 2" from two chunks is one line, so the counts of
      // a text add up to no more than its true count, and every text is there.
      std::map<std::string, long> ours;
      std::istringstream counted(sortFile(dir, text, buffer, false, true).output);
      for (std::string line; std::getline(counted, line);)
        ours[line.substr(0, line.rfind(' '))] += std::stol(line.substr(line.rfind(' ') + 1));
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
    EXPECT_TRUE(s.printed.ends_with(c.lastLines)) << s.printed;
    if (c.output.empty()) {
      EXPECT_EQ(s.output, "<none>");
    }
    EXPECT_EQ(workFilesLeft(dir), 0);
  }
  for (std::string unreadable : {dir.file("absent"), dir.path()}) {
    std::string printed = captureStdout([&] {
      EXPECT_EQ(fsStrSort(unreadable.c_str(), dir.file("out").c_str(), "", 0, 1, 0), 0);
    });
    EXPECT_EQ(printed, "Cannot open input file " + unreadable + "\n");
  }
  // A work file left by an earlier sort with the same prefix goes at the start.
  writeFile(dir.file("sort_7.tmp"), "old\n");
  sortFile(dir, "x\n", 0, true, false);
  EXPECT_EQ(workFilesLeft(dir), 0);
  // A line longer than the buffer ends the chunk phase.
  EXPECT_EQ(sortFile(dir, "b\na\nlong line\nc\n", 4, true, false).output, "a\nb\n");
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
      // Counted lines were ordered by their text ("a 6" before "a 1 1"), not as whole lines.
      {"a\na\na\na\na\na\na 1\n", 12, false, true, "a 1 1\na 6\n"},
      // Same for a tab: "a\t 1" is below "a 2" as a whole line.
      {"a\na\na\tx\n", 4, false, true, "a\tx 1\na 2\n"},
  };
  TempDir dir;
  const std::string input = dir.file("in.txt"), output = dir.file("out.txt");
  for (const Case &c : cases) {
    SCOPED_TRACE(c.input);
    // LF alone, then CR LF on Windows, where a seek back miscounted and the chunks never ended.
    for (auto *write : {&writeFile, &writeText}) {
      write(input, c.input);
      captureStdout([&] {
        fsStrSort(input.c_str(), output.c_str(), (dir.path() + "/").c_str(), c.buffer, c.keep, c.counts);
      });
    }
    EXPECT_EQ(readText(output), c.output);
  }
}

#if !defined(_WIN32)
TEST(FileSort, InputBeyond4GiB) {
  // A 32-bit build wrapped the size in a long (4 GiB + 4 bytes became 4), or could not stat it.
  TempDir dir;
  std::string input = dir.file("in.txt"), output = dir.file("out.txt");
  writeFile(input, "b\na\n");
  std::filesystem::resize_file(input, (uintmax_t(1) << 32) + 4);  // a hole of NULs
  std::string progress = captureStdout([&] {
    fsStrSort(input.c_str(), output.c_str(), (dir.path() + "/").c_str(), 16, 1, 0);
  });
  EXPECT_NE(progress.find("with 4294967300 bytes, 16 bytes at a time"), std::string::npos) << progress;
  EXPECT_EQ(readText(output), "a\nb\n");
}
#endif

TEST(SortTool, ArgumentsStreamsAndLibraryTexts) {
  TempDir dir, work;
  writeFile(dir.file("in.txt"), "b\na\nb\n");
  auto counted = expectTool({"sort", "in.txt", "out.txt", "--count"}, 0, "", dir.path());
  EXPECT_EQ(counted.out, "");
  EXPECT_EQ(counted.err, "Sorting file in.txt with 6 bytes, in memory 6\nIndexing 3 records of 6 bytes ...\n"
                         "Sorting 3 records ...\nWriting output file out.txt ...\n2 records written\n");
  EXPECT_EQ(readText(dir.file("out.txt")), "a 1\nb 2\n");
  expectTool({"sort", "in.txt", "sorted.txt", "--buffer", "2", "--prefix", "w_"}, 0, "", dir.path());
  EXPECT_EQ(readText(dir.file("sorted.txt")), "a\nb\nb\n");
  for (std::vector<std::string> wrong : {std::vector<std::string>{"sort", "in.txt"},
                                         {"sort", "in.txt", "out", "--buffer", "x"},
                                         {"sort", "in.txt", "out", "--prefix", "../x"}})
    expectTool(wrong, 2);
  // Standard input and output go through copies in the work directory, gone after.
  auto both = expectTool({"sort", "-", "-", "--temporary-directory", work.path()}, 0, "b\nc\na\n");
  EXPECT_EQ(both.out, "a\nb\nc\n");
  EXPECT_TRUE(std::filesystem::is_empty(work.path()));
}

// The library removes files named like its work files under its prefix: the tool gives it a
// directory of its own, so no file of the user's (input and output included) is among them.
TEST(SortTool, RemovesNothingItDidNotCreate) {
  TempDir dir, work;
  const std::string lines = "d\nb\na\nc\n";
  for (int n : {0, 3, 5, 19}) writeFile(dir.file("sort_" + std::to_string(n) + ".tmp"), lines);
  expectTool({"sort", "sort_0.tmp", "sort_3.tmp", "--buffer", "4"}, 0, "", dir.path());
  EXPECT_EQ(readText(dir.file("sort_3.tmp")), "a\nb\nc\nd\n");
  for (int n : {0, 5, 19}) EXPECT_EQ(readFile(dir.file("sort_" + std::to_string(n) + ".tmp")), lines);
  // The work files are made where asked, and the work directory goes too.
  std::vector<std::string> args = {"sort", "sort_0.tmp", "out.txt", "--buffer", "4",
                                   "--temporary-directory", work.path()};
  auto result = expectTool(args, 0, "", dir.path());
  EXPECT_NE(result.err.find("Writing output file " + work.path()), std::string::npos) << result.err;
  EXPECT_TRUE(std::filesystem::is_empty(work.path()));
}

// Failures give the system's reason; a sort that could not write every line
// fails and leaves the old output as it was, or writes nothing to stdout.
TEST(SortTool, FailuresKeepTheOldOutputAndGiveTheReason) {
  TempDir dir;
  writeFile(dir.file("in.txt"), "b\na\nlong line\nc\nd\ne\n");
  writeFile(dir.file("out.txt"), "precious\n");
  struct Case {
    std::vector<std::string> args;
    std::string input, err;
    bool whole;  // else a part of the error text
  };
  const Case cases[] = {
      {{"sort", "in.txt", "out.txt", "--buffer", "4"}, "",
       "fskit sort: stopped early, out.txt left as it was: "
       "a line longer than the sort buffer (4 bytes) at byte ",
       false},
      {{"sort", "-", "-", "--buffer", "4"}, "a\nlonger line\n",
       "fskit sort: stopped early, nothing written: ", false},
      {{"sort", "absent.txt", "out.txt"}, "",
       "fskit sort: cannot open input file absent.txt: No such file or directory\n", true},
      {{"sort", ".", "out.txt"}, "", "fskit sort: cannot open input file .: Is a directory\n", true},
      {{"sort", "in.txt", "out.txt", "--temporary-directory", "absent"}, "",
       "fskit sort: cannot make a work directory in absent", false},
  };
  for (const Case &c : cases) {
    auto result = expectTool(c.args, 1, c.input, dir.path());
    EXPECT_EQ(result.out, "");
    if (c.whole) {
      EXPECT_EQ(result.err, c.err);
    } else {
      EXPECT_NE(result.err.find(c.err), std::string::npos) << result.err;
    }
    EXPECT_EQ(readFile(dir.file("out.txt")), "precious\n");
  }
  // Nothing of the sorts is left beside the input and the output.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);
}
