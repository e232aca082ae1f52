// SPDX-License-Identifier: MIT
// Helpers shared by the test programs: capturing the standard streams,
// temporary directories, files and running the fskit tool.
#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace fskit::test {

// Runs `body` with standard output (or error) redirected to a file and
// returns what was written, at the C library and the descriptor level.
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
  // path() + "/" + name
  std::string file(const std::string &name) const;

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

// Makes `content` the process's standard input (descriptor 0, read from a
// file) until destroyed.
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
// A text file as a program reading text sees it: on Windows, where the C
// library writes a line end as CR LF, CR LF comes back as LF. Captured output
// and the tool's output are read this way.
std::string readText(const std::string &path);
void writeFile(const std::string &path, const std::string &content);
// Writes a text file as a program writing text does: LF becomes CR LF on
// Windows, where a text stream's seeks are only right on such files.
void writeText(const std::string &path, const std::string &content);
bool fileExists(const std::string &path);

// A binary stream that `text` is read from, closed by the caller with
// fclose (a temporary file that goes with it, so it works where the C
// library has no memory streams).
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

// Runs the built fskit tool with `args`, feeding `input` on standard input,
// in directory `workDir` (the current directory when empty). Its output is
// read as text (readText).
ToolResult runTool(const std::vector<std::string> &args, const std::string &input = "",
                   const std::string &workDir = "");

// Runs `reset` after every test case of the program, so that the cases also
// pass one after another in one process (the quick run) where they change
// process-wide state: define one at namespace scope,
//   const fskit::test::AfterEachTest reset{[] { ... }};
struct AfterEachTest {
  explicit AfterEachTest(std::function<void()> reset);
};

}  // namespace fskit::test
