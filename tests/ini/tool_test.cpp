// fskit ini get|set|list.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

using fskit::test::readText;
using fskit::test::runTool;
using fskit::test::TempDir;
using fskit::test::writeFile;

TEST(IniTool, GetSetList) {
  TempDir dir;
  std::string file = dir.file("app.ini"), fresh = dir.file("fresh.ini");
  writeFile(file, "[A]\nx = 1\n");
  auto set = runTool({"ini", "set", file, "Formula Files", "elementFile", "new.tbl", "why"});
  EXPECT_EQ(set.status, 0);
  EXPECT_EQ(set.out + set.err, "");
  EXPECT_EQ(readText(file), "[A]\nx = 1\n[Formula Files]\nelementFile = new.tbl\t; why\n");
  EXPECT_EQ(runTool({"ini", "list", file}).out, "A\tx\t1\nFormula Files\telementFile\tnew.tbl\n");
  // `set` creates a missing file.
  EXPECT_EQ(runTool({"ini", "set", fresh, "P", "t", "a;b"}).status, 0);
  EXPECT_EQ(readText(fresh), "[P]\nt = \"a;b\"\n");
  auto get = runTool({"ini", "get", fresh, "P", "t"});
  EXPECT_EQ(get.status, 0);
  EXPECT_EQ(get.out, "a;b\n");

  // `get` and `list` fail with the library's message.
  auto missing = runTool({"ini", "list", dir.file("none.ini")});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "Error opening ini file " + dir.file("none.ini") + "\n");
  auto notFound = runTool({"ini", "get", fresh, "P", "T"});
  EXPECT_EQ(notFound.status, 1);
  EXPECT_EQ(notFound.out, "");
  EXPECT_EQ(notFound.err, "Cannot find value for paragraph \"P\" topic \"T\"\n");

  for (const auto &args : std::vector<std::vector<std::string>>{
           {"ini"}, {"ini", "drop", fresh}, {"ini", "get", fresh, "P"},
           {"ini", "set", fresh, "P", "t"}, {"ini", "list"}}) {
    auto bad = runTool(args);
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err.find("fskit ini: "), 0u) << bad.err;
  }
}
