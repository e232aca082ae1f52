// SPDX-License-Identifier: MIT
// The cmdline and tags commands of the fskit tool.
#include <gtest/gtest.h>

#include "tests/support/test_support.h"

using fskit::test::runTool;

TEST(CmdlineTool, PrintsPartsOrStopCharacter) {
  EXPECT_EQ(runTool({"cmdline", "copy", "a.dat,b.dat", "/log=out.txt /verbose"}).out,
            "part\ttext\tvalue\tend\nargument\tcopy\t\t\nargument\ta.dat\t\t,\n"
            "argument\tb.dat\t\t\nqualifier\tlog\tout.txt\t\nqualifier\tverbose\t\t\n");
  auto stopped = runTool({"cmdline", "/q=a=b"});
  EXPECT_EQ(stopped.status, 1);
  EXPECT_EQ(stopped.err, "%kwaCmdLnPrts, Invalid delimiter =b\n");
  EXPECT_EQ(runTool({"cmdline", "--json", "--", "--x"}).out,
            "{\"part\":\"argument\",\"text\":\"--x\",\"value\":\"\",\"end\":\"\"}\n");
  // A quote or a list left open: the parser's line, nothing printed, status 1.
  auto unmatched = runTool({"cmdline", "copy \"a b"});
  EXPECT_EQ(unmatched.status, 1);
  EXPECT_EQ(unmatched.out, "");
  EXPECT_EQ(unmatched.err, "%kwaCmdLnPrts, Unmatched quoted string.\n");
  EXPECT_EQ(runTool({"cmdline", "/q=(a,b"}).status, 1);
  // Closed quotes, "" inside them and quotes inside a list are complete.
  auto closed = runTool({"cmdline", "\"a \"\"b\"\" c\" /q=(\"x)"});
  EXPECT_EQ(closed.status, 0) << closed.err;
  EXPECT_EQ(closed.out,
            "part\ttext\tvalue\tend\nargument\ta \"b\" c\t\t\nqualifier\tq\t(\"x)\t\n");
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
