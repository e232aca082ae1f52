// SPDX-License-Identifier: MIT
// The fskit tool's own behaviour: help, version, platform and usage errors.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>
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

// Every command that `fskit --help` lists explains itself with a usage line and an example, and
// refuses an unknown option with status 2 and one line on standard error that names the command.
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

namespace {

// The keys of one flat JSON object of strings and numbers, as the tool
// writes a table row; empty when `line` is not such an object.
std::vector<std::string> jsonKeys(const std::string &line) {
  // A member: a key, then a string (no control characters) or a JSON number.
  static const std::regex member(R"re("((?:[^"\\\x00-\x1f]|\\.)*)":)re"
                                 R"re((?:"(?:[^"\\\x00-\x1f]|\\.)*"|-?(?:0|[1-9]\d*)(?:\.\d+)?(?:[eE][+-]?\d+)?)([,}]))re");
  if (line.empty() || line[0] != '{') return {};
  std::vector<std::string> keys;
  std::smatch m;
  for (auto at = line.cbegin() + 1;
       std::regex_search(at, line.cend(), m, member, std::regex_constants::match_continuous);) {
    keys.push_back(m[1]);
    at = m[0].second;
    if (*m[2].first == '}') return at == line.cend() ? keys : std::vector<std::string>{};
  }
  return {};
}

}  // namespace

// Every table that --json writes is one JSON object per line, each with the keys of the
// tab-separated header, in its order.
TEST(Tool, JsonLinesHaveTheHeadersKeys) {
  fskit::test::TempDir dir;
  fskit::test::writeFile(dir.file("a.ini"), "[P \"q\"]\nt = a\\tb\n");
  const std::vector<std::vector<std::string>> tables = {
      {"formula", "H2O", "C6H12O6"},
      {"elements"},
      {"date", "--layouts"},
      {"ls", dir.path()},
      {"ini", "list", dir.file("a.ini")},
      {"platform"},
  };
  for (std::vector<std::string> args : tables) {
    auto text = runTool(args);
    ASSERT_EQ(text.status, 0) << args[0] << text.err;
    std::istringstream header(text.out.substr(0, text.out.find('\n')));
    std::vector<std::string> expected;
    for (std::string key; std::getline(header, key, '\t');) expected.push_back(key);
    args.insert(args.begin() + 1, "--json");
    auto json = runTool(args);
    ASSERT_EQ(json.status, 0) << args[0] << json.err;
    EXPECT_EQ(json.out.back(), '\n') << args[0];
    std::istringstream rows(json.out);
    size_t lines = 0;
    for (std::string row; std::getline(rows, row); ++lines)
      EXPECT_EQ(jsonKeys(row), expected) << args[0] << ": " << row;
    EXPECT_EQ(lines + 1, size_t(std::count(text.out.begin(), text.out.end(), '\n'))) << args[0];
  }
}
