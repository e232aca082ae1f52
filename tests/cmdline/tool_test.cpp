// The cmdline and tags commands of the fskit tool.
#include <gtest/gtest.h>

#include "tests/support/test_support.h"

using fskit::test::runTool;

TEST(CmdlineTool, PrintsPartsOrStopCharacter) {
  auto parsed = runTool({"cmdline", "copy", "a.dat,b.dat", "/log=out.txt /verbose"});
  EXPECT_EQ(parsed.status, 0);
  EXPECT_EQ(parsed.out,
            "argument\tcopy\nargument\ta.dat\t,\nargument\tb.dat\n"
            "qualifier\tlog\tout.txt\nqualifier\tverbose\n");
  auto stopped = runTool({"cmdline", "/q=a=b"});
  EXPECT_EQ(stopped.status, 1);
  EXPECT_EQ(stopped.out, "");
  EXPECT_EQ(stopped.err,
            "%kwaCmdLnPrts, Invalid delimiter =b\nfskit cmdline: stopped at character 61 '='\n");
  EXPECT_EQ(runTool({"cmdline"}).status, 2);
}
