// SPDX-License-Identifier: MIT
// The fskit tool's own behaviour: help, version, platform and usage errors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

using fskit::test::runTool;

TEST(Tool, VersionPlatformHelpAndUsageErrors) {
  for (const char *spelling : {"version", "--version"}) {
    auto version = runTool({spelling});
    EXPECT_EQ(version.status, 0) << spelling;
    EXPECT_EQ(version.out, "fskit " FSKIT_PROJECT_VERSION "\n") << spelling;
    EXPECT_EQ(version.err, "") << spelling;
  }
  EXPECT_EQ(runTool({"--version", "x"}).status, 2);
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
  auto unreadable = runTool({"ls", "/no/such/directory"});
  EXPECT_EQ(unreadable.status, 1);
  EXPECT_EQ(unreadable.err,
            "fskit ls: cannot read directory /no/such/directory: No such file or directory\n");
  auto unknown = runTool({"no-such-command"});
  EXPECT_EQ(unknown.err, "fskit: unknown command 'no-such-command' (try 'fskit --help')\n");
}

// Every command that `fskit --help` lists explains itself with a usage line
// and an example, and refuses an unknown option with status 2 and one line
// on standard error that names the command.
TEST(Tool, EveryCommandHasHelpAndRefusesUnknownOptions) {
  std::string overview = runTool({"--help"}).out;
  std::vector<std::string> names;
  for (size_t at = overview.find("\n  ", overview.find("commands:")); at != std::string::npos;
       at = overview.find("\n  ", at + 1)) {
    size_t end = overview.find(' ', at + 3);
    names.push_back(overview.substr(at + 3, end - at - 3));
    EXPECT_NE(overview.find_first_not_of(' ', end), overview.find('\n', end))
        << names.back() << " has no summary";
  }
  ASSERT_GE(names.size(), 9u);
  for (const std::string &name : names) {
    auto help = runTool({name, "--help"});
    EXPECT_EQ(help.status, 0) << name;
    EXPECT_EQ(help.out.rfind("usage: fskit " + name, 0), 0u) << help.out;
    EXPECT_NE(help.out.find("\nexample: fskit " + name), std::string::npos) << help.out;
    auto bad = runTool({name, "--no-such-option"});
    EXPECT_EQ(bad.status, 2) << name;
    EXPECT_EQ(bad.out, "") << name;
    EXPECT_EQ(bad.err.rfind("fskit " + name + ": ", 0), 0u) << bad.err;
    EXPECT_EQ(bad.err.find('\n'), bad.err.size() - 1) << bad.err;
  }
}
