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
  std::string file = dir.file("app.ini");
  writeFile(file, "[Formula Files]\n; where the table is\nelementFile = old.tbl\n");
  auto set = runTool({"ini", "set", file, "Formula Files", "elementFile", "new.tbl", "why"});
  EXPECT_EQ(set.status, 0);
  EXPECT_EQ(set.out + set.err, "");
  EXPECT_EQ(runTool({"ini", "set", file, "Other", "k", "a;b"}).status, 0);
  EXPECT_EQ(readText(file),
            "[Formula Files]\n; where the table is\nelementFile = new.tbl\t; why\n"
            "[Other]\nk = \"a;b\"\n");
  auto get = runTool({"ini", "get", file, "Other", "k"});
  EXPECT_EQ(get.status, 0);
  EXPECT_EQ(get.out, "a;b\n");
  // The comment line ends the listing of the first paragraph.
  EXPECT_EQ(runTool({"ini", "list", file}).out, "Other\tk\ta;b\n");
  writeFile(file, "[A]\nx = 1\ny =\nz = 3\n");
  auto list = runTool({"ini", "list", file});
  EXPECT_EQ(list.out, "A\tx\t1\nA\tz\t3\n");
  EXPECT_EQ(list.err, "Cannot find value for paragraph \"A\" topic \"y\"\n");

  // A missing file: `set` creates it, `get` and `list` fail with the library's message.
  std::string fresh = dir.file("fresh.ini");
  EXPECT_EQ(runTool({"ini", "set", fresh, "P", "t", "v"}).status, 0);
  EXPECT_EQ(readText(fresh), "[P]\nt = v\n");
  auto missing = runTool({"ini", "get", dir.file("none.ini"), "P", "t"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "Error opening ini file " + dir.file("none.ini") + "\n");
  auto notFound = runTool({"ini", "get", fresh, "P", "T"});
  EXPECT_EQ(notFound.status, 1);
  EXPECT_EQ(notFound.out, "");
  EXPECT_EQ(notFound.err, "Cannot find value for paragraph \"P\" topic \"T\"\n");

  for (const auto &args : std::vector<std::vector<std::string>>{
           {"ini"}, {"ini", "drop", fresh}, {"ini", "get", fresh, "P"},
           {"ini", "set", fresh, "P", "t"}, {"ini", "list"}, {"ini", "list", fresh, "--all"}}) {
    auto bad = runTool(args);
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err.find("fskit ini: "), 0u) << bad.err;
  }
  EXPECT_EQ(runTool({"ini", "--help"}).out.find("usage: fskit ini get"), 0u);
}
