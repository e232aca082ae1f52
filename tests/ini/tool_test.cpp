// SPDX-License-Identifier: MIT
// fskit ini get|set|list.
#include <fskit/ini.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

using namespace fskit::test;

TEST(IniTool, GetSetList) {
  TempDir dir;
  std::string file = dir.file("app.ini"), fresh = dir.file("fresh.ini");
  writeFile(file, "[A]\nx = 1\n");
  auto set = runTool({"ini", "set", file, "Formula Files", "elementFile", "new.tbl", "why"});
  EXPECT_EQ(set.status, 0);
  EXPECT_EQ(set.out + set.err, "");
  EXPECT_EQ(readText(file), "[A]\nx = 1\n[Formula Files]\nelementFile = new.tbl\t; why\n");
  EXPECT_EQ(runTool({"ini", "list", file}).out,
            "paragraph\ttopic\tvalue\nA\tx\t1\nFormula Files\telementFile\tnew.tbl\n");
  EXPECT_EQ(runTool({"ini", "list", "--json", file}).out,
            "{\"paragraph\":\"A\",\"topic\":\"x\",\"value\":\"1\"}\n"
            "{\"paragraph\":\"Formula Files\",\"topic\":\"elementFile\",\"value\":\"new.tbl\"}\n");
  EXPECT_EQ(runTool({"ini", "get", "--json", file, "A", "x"}).status, 2);
  // `set` creates a missing file.
  EXPECT_EQ(runTool({"ini", "set", fresh, "P", "t", "a;b"}).status, 0);
  EXPECT_EQ(readText(fresh), "[P]\nt = \"a;b\"\n");
  auto get = runTool({"ini", "get", fresh, "P", "t"});
  EXPECT_EQ(get.status, 0);
  EXPECT_EQ(get.out, "a;b\n");

  // FILE - reads standard input for get and list; set refuses it.
  EXPECT_EQ(runTool({"ini", "get", "-", "A", "x"}, "[A]\nx = 1\n").out, "1\n");
  EXPECT_EQ(runTool({"ini", "list", "-"}, "[A]\nx = 1\ny=2\n").out,
            "paragraph\ttopic\tvalue\nA\tx\t1\nA\ty\t2\n");
  auto setStdin = runTool({"ini", "set", "-", "A", "x", "2"}, "[A]\nx = 1\n");
  EXPECT_EQ(setStdin.status, 2);
  EXPECT_EQ(setStdin.out, "");

  // `get` and `list` fail with the library's message.
  auto missing = runTool({"ini", "list", dir.file("none.ini")});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "Error opening ini file " + dir.file("none.ini") + "\n");
  auto notFound = runTool({"ini", "get", fresh, "P", "T"});
  EXPECT_EQ(notFound.status, 1);
  EXPECT_EQ(notFound.out, "");
  EXPECT_EQ(notFound.err, "Cannot find value for paragraph \"P\" topic \"T\"\n");

  for (const auto &args : std::vector<std::vector<std::string>>{
           {"ini"}, {"ini", "drop", fresh}, {"ini", "get", fresh, "P"}, {"ini", "set", fresh, "P", "t"},
           {"ini", "list"}}) {
    auto bad = runTool(args);
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err.find("fskit ini: "), 0u) << bad.err;
  }
}

// `set` refuses what would change how the file reads, and warns when the
// value will not read back whole, which the C functions confirm.
TEST(IniTool, SetRefusesBreakingNamesAndWarnsOfValuesThatDoNotReadBack) {
  TempDir dir;
  std::string file = dir.file("app.ini");
  const std::string before = "; settings\n[A]\nx=1\n";
  writeFile(file, before);
  for (const auto &[paragraph, topic, value] : std::vector<std::array<std::string, 3>>{
           {"A\nB", "t", "v"}, {"A", "t\r", "v"}, {"A", "t", "v\nw"}, {"", "t", "v"},
           {"A]", "t", "v"}, {"A", "", "v"}, {"A", "a=b", "v"}, {"A", "[t", "v"}, {"A", ";t", "v"},
           {"A", "#t", "v"}, {"A", " t", "v"}, {"A", "t ", "v"}}) {
    auto refused = runTool({"ini", "set", file, paragraph, topic, value});
    EXPECT_EQ(refused.status, 2) << topic;
    EXPECT_EQ(refused.err.find("fskit ini: "), 0u) << refused.err;
    EXPECT_EQ(readFile(file), before);
  }
  auto comment = runTool({"ini", "set", file, "A", "t", "v", "two\nlines"});
  EXPECT_EQ(comment.status, 2);
  EXPECT_EQ(readFile(file), before);

  // Warned of: the C functions read something else back. Not warned of: the
  // C functions read the value back whole.
  const std::string readable = "[A]\nx=1\n";
  writeFile(file, readable);
  for (const std::string &value : std::vector<std::string>{
           "a;\"b\"", "\"q;\"", "\"quoted\"", " lead", "=x", "trail ", std::string(1100, 'v'),
           "a;b", " lead;x", "=x;y", "a\"b", "plain", ""}) {
    auto result = runTool({"ini", "set", file, "A", "t", value});
    EXPECT_EQ(result.status, 0);
    int32_t handle = fsIniReadFile(file.c_str());
    char back[1100], comment[1];
    if (fsIniGetValue(handle, "A", "t", back, comment) == 0) back[0] = '\0';
    fsIniReleaseFile(handle);
    bool warned = result.err.find("fskit ini: warning: ") == 0;
    EXPECT_EQ(warned, std::string(back) != value) << value << " read back as " << back;
  }
  EXPECT_EQ(readFile(file), readable + "t = \n");
}
