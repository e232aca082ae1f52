// SPDX-License-Identifier: MIT
// fskit ini get|set|list.
#include <fskit/ini.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

using namespace fskit::test;

TEST(IniTool, GetSetListRefusalsAndWarnings) {
  TempDir dir;
  std::string file = dir.file("app.ini"), fresh = dir.file("fresh.ini"), none = dir.file("none.ini");
  writeFile(file, "[A]\nx = 1\n");
  const std::string table = "paragraph\ttopic\tvalue\nA\tx\t1\n";
  const struct {
    std::vector<std::string> args;
    int status;
    std::string input, out, err;
  } runs[] = {
      {{"ini", "set", file, "Formula Files", "elementFile", "new.tbl", "why"}, 0, "", "", ""},
      {{"ini", "list", file}, 0, "", table + "Formula Files\telementFile\tnew.tbl\n", ""},
      {{"ini", "list", "--json", file}, 0, "",
       "{\"paragraph\":\"A\",\"topic\":\"x\",\"value\":\"1\"}\n"
       "{\"paragraph\":\"Formula Files\",\"topic\":\"elementFile\",\"value\":\"new.tbl\"}\n",
       ""},
      {{"ini", "set", fresh, "P", "t", "a;b"}, 0, "", "", ""},  // creates a missing file
      {{"ini", "get", fresh, "P", "t"}, 0, "", "a;b\n", ""},
      // FILE - reads standard input for get and list.
      {{"ini", "get", "-", "A", "x"}, 0, "[A]\nx = 1\n", "1\n", ""},
      {{"ini", "list", "-"}, 0, "[A]\nx = 1\ny=2\n", table + "A\ty\t2\n", ""},
      // `get` and `list` fail with the library's message.
      {{"ini", "list", none}, 1, "", "", "Error opening ini file " + none + "\n"},
      {{"ini", "get", fresh, "P", "T"}, 1, "", "", "Cannot find value for paragraph \"P\" topic \"T\"\n"},
  };
  for (const auto &run : runs) {
    auto result = runTool(run.args, run.input);
    SCOPED_TRACE(run.args[1] + " " + run.args.back());
    EXPECT_EQ(result.status, run.status);
    EXPECT_EQ(result.out, run.out);
    EXPECT_EQ(result.err, run.err);
  }
  EXPECT_EQ(readText(file), "[A]\nx = 1\n[Formula Files]\nelementFile = new.tbl\t; why\n");
  EXPECT_EQ(readText(fresh), "[P]\nt = \"a;b\"\n");

  // Usage errors, and set refusing standard input.
  for (const auto &args : std::vector<std::vector<std::string>>{
           {"ini"}, {"ini", "drop", fresh}, {"ini", "get", fresh, "P"}, {"ini", "set", fresh, "P", "t"},
           {"ini", "list"}, {"ini", "get", "--json", file, "A", "x"}, {"ini", "set", "-", "A", "x", "2"}}) {
    auto bad = runTool(args);
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err.find("fskit ini: "), 0u) << bad.err;
  }

  // `set` refuses what would change how the file reads.
  const std::string before = readFile(file);
  for (const auto &names : std::vector<std::vector<std::string>>{
           {"A\nB", "t", "v"}, {"A", "t\r", "v"}, {"A", "t", "v\nw"}, {"", "t", "v"},
           {"A]", "t", "v"}, {"A", "", "v"}, {"A", "a=b", "v"}, {"A", "[t", "v"}, {"A", ";t", "v"},
           {"A", "#t", "v"}, {"A", " t", "v"}, {"A", "t ", "v"}, {"A", "t", "v", "two\nlines"}}) {
    std::vector<std::string> args{"ini", "set", file};
    args.insert(args.end(), names.begin(), names.end());
    auto refused = runTool(args);
    EXPECT_EQ(refused.status, 2) << names[1];
    EXPECT_EQ(refused.err.find("fskit ini: "), 0u) << refused.err;
    EXPECT_EQ(readFile(file), before);
  }

  // Warned of exactly when the C functions read something else back.
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
