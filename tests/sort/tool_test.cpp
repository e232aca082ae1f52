// SPDX-License-Identifier: MIT
// fskit sort with standard input and output, and its failures.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/test_support.h"

using fskit::test::readText;
using fskit::test::runTool;
using fskit::test::TempDir;
using fskit::test::writeFile;

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
