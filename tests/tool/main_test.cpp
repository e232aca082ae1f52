// SPDX-License-Identifier: MIT
// The fskit tool's own behaviour: help, version, platform and usage errors.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
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
  EXPECT_EQ(platform.out,
            "property\tvalue\nos\twinnt\nbyte order\tlittle\nfloat format\tieee\n");
  auto help = runTool({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("  version"), std::string::npos);
  EXPECT_NE(help.out.find("  platform"), std::string::npos);

  for (const auto &args : {std::vector<std::string>{}, {"no-such-command"}, {"version", "x"}}) {
    auto bad = runTool(args);
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.out, "");
    EXPECT_FALSE(bad.err.empty());
  }
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

// Every table that --json writes is one JSON object per line, each with the
// keys of the tab-separated header, in its order.
TEST(Tool, JsonLinesHaveTheHeadersKeys) {
  fskit::test::TempDir dir;
  fskit::test::writeFile(dir.file("a.ini"), "[P \"q\"]\nt = a\\tb\n");
  fskit::test::writeFile(dir.file("t.tbl"), "ms Mass spectrum\n");
  const std::vector<std::vector<std::string>> tables = {
      {"formula", "H2O", "C6H12O6"},
      {"elements"},
      {"convert", "vaxf", "80 40 00 00"},
      {"convert", "--encode", "vaxf", "1"},
      {"date", "--layouts"},
      {"ls", dir.path()},
      {"ini", "list", dir.file("a.ini")},
      {"tags", dir.file("t.tbl")},
      {"cmdline", "a,b /q=\"x\" /v"},
      {"platform"},
  };
  for (std::vector<std::string> args : tables) {
    auto text = runTool(args);
    ASSERT_EQ(text.status, 0) << args[0] << text.err;
    std::string header = text.out.substr(0, text.out.find('\n'));
    std::vector<std::string> expected;
    for (size_t at = 0; at <= header.size();) {
      size_t end = std::min(header.find('\t', at), header.size());
      expected.push_back(header.substr(at, end - at));
      at = end + 1;
    }
    args.insert(args.begin() + 1, "--json");
    auto json = runTool(args);
    ASSERT_EQ(json.status, 0) << args[0] << json.err;
    size_t lines = 0;
    for (size_t at = 0; at < json.out.size(); ++lines) {
      size_t end = json.out.find('\n', at);
      ASSERT_NE(end, std::string::npos) << args[0];
      EXPECT_EQ(jsonKeys(json.out.substr(at, end - at)), expected)
          << args[0] << ": " << json.out.substr(at, end - at);
      at = end + 1;
    }
    EXPECT_EQ(lines + 1, size_t(std::count(text.out.begin(), text.out.end(), '\n'))) << args[0];
  }
}
