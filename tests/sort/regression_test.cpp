// SPDX-License-Identifier: MIT
// Cases that once went wrong in the sort family, each with what it used to do.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

using fskit::test::TempDir;

namespace {

std::string sortInChunks(const TempDir &dir, const std::string &content, long buffer,
                         bool keep, bool counts) {
  std::string input = dir.file("in.txt"), output = dir.file("out.txt");
  fskit::test::writeText(input, content);
  std::string prefix = dir.path() + "/";
  fskit::test::captureStdout([&] {
    fsStrSort(input.c_str(), output.c_str(), prefix.c_str(), buffer, keep, counts);
  });
  return fskit::test::readText(output);
}

}  // namespace

TEST(SortRegression, MergeComparesWholeLinesWithTheirNewline) {
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
  for (const Case &c : cases) {
    SCOPED_TRACE(c.input);
    EXPECT_EQ(sortInChunks(dir, c.input, c.buffer, c.keep, c.counts), c.output);
  }
}

TEST(SortRegression, SortArraysWithANegativeCountIsOutOfMemory) {
  std::vector<int32_t> keys = {3, 1, 2}, copy = keys;
  // A negative n sorted nothing and said nothing; its index cannot be had.
  std::string messages = fskit::test::captureStderr(
      [&] { fsSortArrays(FS_SORT_LONG, -1L, 1L, 4L, keys.data()); });
  EXPECT_EQ(messages, "fsSortArrays: out of memory\n");
  EXPECT_EQ(keys, copy);
}

#if defined(_WIN32)
TEST(SortRegression, LfOnlyInputInChunksEnds) {
  // A text stream's seek back on a file without CR miscounts; the chunk loop
  // could come back to where a chunk began and never end.
  TempDir dir;
  std::string input = dir.file("in.txt"), output = dir.file("out.txt");
  fskit::test::writeFile(input, "a\na\tb\n");
  fskit::test::captureStdout([&] {
    fsStrSort(input.c_str(), output.c_str(), (dir.path() + "/").c_str(), 4, 1, 0);
  });
}
#endif

#if !defined(_WIN32)
TEST(SortRegression, InputBeyond4GiB) {
  // A 32-bit build took the input's size through a long, wrapped (4 GiB + 4
  // bytes became 4) or, before large-file support, could not stat it at all.
  TempDir dir;
  std::string input = dir.file("in.txt"), output = dir.file("out.txt");
  fskit::test::writeFile(input, "b\na\n");
  std::filesystem::resize_file(input, (uintmax_t(1) << 32) + 4);  // a hole of NULs
  std::string progress = fskit::test::captureStdout([&] {
    fsStrSort(input.c_str(), output.c_str(), (dir.path() + "/").c_str(), 16, 1, 0);
  });
  EXPECT_NE(progress.find("with 4294967300 bytes, 16 bytes at a time"), std::string::npos) << progress;
  EXPECT_EQ(fskit::test::readText(output), "a\nb\n");
}
#endif
