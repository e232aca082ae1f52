// SPDX-License-Identifier: MIT
// The fskit tool's own behaviour: help, version, platform and usage errors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

using fskit::test::runTool;

TEST(Tool, VersionPlatformAndUsageErrors) {
  const struct {
    std::vector<std::string> args;
    int status;
    std::string out, err;
  } cases[] = {
      {{"version"}, 0, "fskit " FSKIT_PROJECT_VERSION "\n", ""},
      {{"--version"}, 0, "fskit " FSKIT_PROJECT_VERSION "\n", ""},
      {{"platform"}, 0, "property\tvalue\nos\twinnt\nbyte order\tlittle\nfloat format\tieee\n", ""},
      {{"platform", "--json"}, 0,
       "{\"property\":\"os\",\"value\":\"winnt\"}\n{\"property\":\"byte order\",\"value\":"
       "\"little\"}\n{\"property\":\"float format\",\"value\":\"ieee\"}\n", ""},
      {{}, 2, "", "fskit: no command given (try 'fskit --help')\n"},
      {{"no-such-command"}, 2, "",
       "fskit: unknown command 'no-such-command' (try 'fskit --help')\n"},
      {{"version", "x"}, 2, "", "fskit version: takes no arguments\n"},
      {{"--version", "x"}, 2, "", "fskit version: takes no arguments\n"},
  };
  for (const auto &c : cases) {
    auto result = runTool(c.args);
    EXPECT_EQ(result.status, c.status) << c.out << c.err;
    EXPECT_EQ(result.out, c.out);
    EXPECT_EQ(result.err, c.err);
  }
}

// Every listed command has a usage line and an example, and refuses an unknown option in one line.
TEST(Tool, EveryCommandHasHelpAndRefusesUnknownOptions) {
  auto listing = runTool({"--help"});
  EXPECT_EQ(listing.status, 0);
  const std::string &overview = listing.out;
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
