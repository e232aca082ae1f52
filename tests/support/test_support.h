// SPDX-License-Identifier: MIT
// Helpers of the test programs: standard streams, temporary directories and files, the tool.
#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace fskit::test {

// What `body` writes on standard output (or error), at the stdio and the descriptor level.
std::string captureStdout(const std::function<void()> &body);
std::string captureStderr(const std::function<void()> &body);

// A fresh directory under $TMPDIR (or /tmp), removed with its contents.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir &) = delete;
  TempDir &operator=(const TempDir &) = delete;
  const std::string &path() const { return path_; }
  std::string file(const std::string &name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

// Makes `path` the current directory until destroyed.
class ChangeDir {
 public:
  explicit ChangeDir(const std::string &path);
  ~ChangeDir();
  ChangeDir(const ChangeDir &) = delete;
  ChangeDir &operator=(const ChangeDir &) = delete;

 private:
  std::string previous_;
};

// Makes `content` standard input (descriptor 0, read from a file) until destroyed.
class StdinFrom {
 public:
  explicit StdinFrom(const std::string &content);
  ~StdinFrom();
  StdinFrom(const StdinFrom &) = delete;
  StdinFrom &operator=(const StdinFrom &) = delete;

 private:
  TempDir dir_;
  int saved_;
};

std::string readFile(const std::string &path);
// As a program reading text sees it: CR LF comes back as LF on Windows. Captured output and the
// tool's output are read this way.
std::string readText(const std::string &path);
void writeFile(const std::string &path, const std::string &content);
// As a program writing text does: LF becomes CR LF on Windows.
void writeText(const std::string &path, const std::string &content);
bool fileExists(const std::string &path);

// A binary stream that `text` is read from, closed by the caller with fclose (a temporary
// file, for C libraries without memory streams).
std::FILE *streamOf(const std::string &text);
// What `write` puts on a fresh binary stream, byte for byte.
std::string writtenTo(const std::function<void(std::FILE *)> &write);

// Sets TZ (for example "UTC0" or "EST5") and makes the C library take it up.
void setTimeZone(const char *zone);

struct ToolResult {
  int status = -1;  // exit status, or -1 when the tool did not exit normally
  std::string out;
  std::string err;
};

// Runs the built fskit tool with `args` and `input` on standard input, in `workDir` (when not
// empty); its output is read as text.
ToolResult runTool(const std::vector<std::string> &args, const std::string &input = "",
                   const std::string &workDir = "");

// Runs `reset` after every test case, so that cases changing process-wide state also pass one
// after another in one process (the quick run): const fskit::test::AfterEachTest reset{...};
struct AfterEachTest {
  explicit AfterEachTest(std::function<void()> reset);
};

}  // namespace fskit::test
