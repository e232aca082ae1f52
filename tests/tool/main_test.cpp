// The fskit tool's own behaviour: help, version, platform and usage errors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

using fskit::test::runTool;

TEST(Tool, VersionPlatformHelpAndUsageErrors) {
  auto version = runTool({"version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.rfind("fskit ", 0), 0u);
  auto platform = runTool({"platform"});
  EXPECT_EQ(platform.status, 0);
  EXPECT_EQ(platform.out, "os\twinnt\nbyte order\tlittle\nfloat format\tieee\n");
  auto help = runTool({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("  version"), std::string::npos);
  EXPECT_NE(help.out.find("  platform"), std::string::npos);
  EXPECT_EQ(runTool({"version", "--help"}).out.find("usage: fskit version"), 0u);

  for (const auto &args : {std::vector<std::string>{}, {"no-such-command"}, {"version", "x"}}) {
    auto bad = runTool(args);
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.out, "");
    EXPECT_FALSE(bad.err.empty());
  }
  auto unknown = runTool({"no-such-command"});
  EXPECT_EQ(unknown.err, "fskit: unknown command 'no-such-command' (try 'fskit --help')\n");
}
