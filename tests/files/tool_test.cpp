// SPDX-License-Identifier: MIT
// fskit ls: sorted paths, directories marked, header or JSON lines.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/test_support.h"

using fskit::test::runTool;
using fskit::test::TempDir;
using fskit::test::writeFile;

TEST(LsTool, SortedPathsWithDirectoriesMarked) {
  TempDir dir;
  std::filesystem::create_directory(dir.file("sub"));
  std::filesystem::create_directory(dir.file("b.d"));
  for (const char *name : {"b.txt", "a.raw", "Z", ".hidden"}) writeFile(dir.file(name), "");
  auto listed = runTool({"ls", "."}, "", dir.path());
  EXPECT_EQ(listed.status, 0) << listed.err;
  EXPECT_EQ(listed.out,
            "path\tname\textension\n./Z\tZ\t\n./a.raw\ta\traw\n./b.d/\tb\td\n"
            "./b.txt\tb\ttxt\n./sub/\tsub\t\n");
  // The directory as given, one '/' added; patterns still choose.
  EXPECT_EQ(runTool({"ls", "./", "b"}, "", dir.path()).out,
            "path\tname\textension\n./b.d/\tb\td\n./b.txt\tb\ttxt\n");
  std::string jsonPath;  // JSON escapes the backslashes of a Windows path
  for (char c : dir.path()) jsonPath += c == '\\' ? std::string("\\\\") : std::string(1, c);
  EXPECT_EQ(runTool({"ls", "--json", dir.path(), "s*"}).out,
            "{\"path\":\"" + jsonPath + "/sub/\",\"name\":\"sub\",\"extension\":\"\"}\n");
  auto none = runTool({"ls", dir.path(), "nothing"});
  EXPECT_EQ(none.status, 0);
  EXPECT_EQ(none.out, "path\tname\textension\n");
  auto missing = runTool({"ls", "--json", dir.file("none")});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.out, "");
  EXPECT_EQ(missing.err, "fskit ls: cannot read directory " + dir.file("none") +
                             ": No such file or directory\n");
}
