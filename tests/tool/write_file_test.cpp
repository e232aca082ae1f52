// SPDX-License-Identifier: MIT
// The tool's whole files (tools/write_file.h): an old file is replaced only
// by a complete new one, and a file not written says why.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>
#if !defined(_WIN32)
#include <sys/resource.h>

#include <csignal>
#endif

#include "tests/support/test_support.h"
#include "tools/write_file.h"

namespace {

using fskit::test::readFile;
using fskit::test::TempDir;
using fskit::tool::writeWholeFile;

std::vector<std::string> namesIn(const std::string &directory) {
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(directory))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

TEST(WriteWholeFile, ReplacesAFileWholeOrSaysWhyNot) {
  TempDir dir;
  const std::string path = dir.file("p.svg"), bytes("<svg>\r\n\0</svg>\n", 15);
  EXPECT_EQ(writeWholeFile(path, "an old picture, longer than the new one"), std::nullopt);
  EXPECT_EQ(writeWholeFile(path, bytes), std::nullopt);
  EXPECT_EQ(readFile(path), bytes) << "every byte as it is, on Windows too";
  EXPECT_EQ(namesIn(dir.path()), std::vector<std::string>{"p.svg"});
  const std::string none = dir.file("none/p.svg");
  EXPECT_EQ(writeWholeFile(none, "x"), "cannot write " + none + ": " + std::strerror(ENOENT));
#if !defined(_WIN32)
  EXPECT_EQ(writeWholeFile(dir.path(), "x"), "cannot write " + dir.path() + ": " + std::strerror(EISDIR));
#endif
}

#if !defined(_WIN32)
// A file size limit fails the write half-way (EFBIG, its signal ignored):
// the old file stays as it was, and no temporary file is left.
TEST(WriteWholeFile, AWriteFailingHalfWayLeavesTheOldFile) {
  TempDir dir;
  const std::string path = dir.file("p.svg");
  fskit::test::writeFile(path, "the old picture");
  rlimit saved{}, small{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
  small = saved;
  small.rlim_cur = 4096;
  auto previous = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  std::optional<std::string> error = writeWholeFile(path, std::string(100000, 'x'));
  setrlimit(RLIMIT_FSIZE, &saved);
  std::signal(SIGXFSZ, previous);
  EXPECT_EQ(error, "cannot write " + path + ": " + std::strerror(EFBIG));
  EXPECT_EQ(readFile(path), "the old picture");
  EXPECT_EQ(namesIn(dir.path()), std::vector<std::string>{"p.svg"});
}
#endif

}  // namespace
