// SPDX-License-Identifier: MIT
#include "tests/support/test_support.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace fskit::test {

// Runs the tool on the files `in`, `out` and `err`: run_tool_posix.cpp, run_tool_windows.cpp.
int toolStatus(const std::vector<std::string> &args, const std::string &in, const std::string &out,
               const std::string &err, const std::string &workDir);

namespace {

// Puts `path`, opened with `flags`, on descriptor `fd`; returns a copy of what was there.
int redirect(int fd, const std::string &path, int flags) {
  int saved = dup(fd);
  int file = open(path.c_str(), flags, 0600);
  if (saved < 0 || file < 0) throw std::runtime_error("cannot redirect to " + path);
  dup2(file, fd);
  close(file);
  return saved;
}

void restore(int fd, int saved) {
  dup2(saved, fd);
  close(saved);
}

std::string capture(std::FILE *stream, int fd, const std::function<void()> &body) {
  TempDir dir;
  std::fflush(stream);
  int saved = redirect(fd, dir.file("capture"), O_WRONLY | O_CREAT | O_TRUNC);
  body();
  std::fflush(stream);
  restore(fd, saved);
  return readText(dir.file("capture"));
}

std::string readWhole(const std::string &path, std::ios::openmode mode) {
  std::ifstream in(path, mode);
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}

void writeWhole(const std::string &path, const std::string &content, std::ios::openmode mode) {
  std::ofstream out(path, mode | std::ios::trunc);
  out << content;
  if (!out) throw std::runtime_error("cannot write " + path);
}

// A path in $TMPDIR (POSIX) or %TEMP% (Windows) that this process has not named before.
std::string freshPath(const std::string &kind) {
  static std::atomic<unsigned> counter{0};
  static const std::string seed = std::to_string(std::random_device{}());
  std::string name = "fskit-" + kind + "-" + seed + "-" + std::to_string(counter++);
  return (std::filesystem::temp_directory_path() / name).string();
}

// An empty read-write binary stream whose file is removed when it is closed.
std::FILE *scratchStream() {
#if defined(_WIN32)
  // tmpfile() writes to the drive's root there; "D" deletes the file at its close.
  std::FILE *stream = std::fopen(freshPath("scratch").c_str(), "w+bD");
#else
  std::FILE *stream = std::tmpfile();
#endif
  if (stream == nullptr) throw std::runtime_error("no scratch stream");
  return stream;
}

}  // namespace

std::string captureStdout(const std::function<void()> &body) {
  return capture(stdout, STDOUT_FILENO, body);
}

std::string captureStderr(const std::function<void()> &body) {
  return capture(stderr, STDERR_FILENO, body);
}

// Under a name nobody else has, as creating the directory proves.
TempDir::TempDir() {
  for (int attempt = 0; attempt < 100; ++attempt) {
    path_ = freshPath("test");
    if (std::filesystem::create_directory(path_)) return;
  }
  throw std::runtime_error("no temporary directory could be made");
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

ChangeDir::ChangeDir(const std::string &path) {
  previous_ = std::filesystem::current_path().string();
  std::filesystem::current_path(path);
}

ChangeDir::~ChangeDir() {
  std::error_code ignored;
  std::filesystem::current_path(previous_, ignored);
}

StdinFrom::StdinFrom(const std::string &content) {
  writeFile(dir_.file("stdin"), content);
  saved_ = redirect(STDIN_FILENO, dir_.file("stdin"), O_RDONLY);
}

StdinFrom::~StdinFrom() { restore(STDIN_FILENO, saved_); }

std::string readFile(const std::string &path) { return readWhole(path, std::ios::binary); }

std::string readText(const std::string &path) { return readWhole(path, std::ios::in); }

void writeFile(const std::string &path, const std::string &content) {
  writeWhole(path, content, std::ios::out | std::ios::binary);
}

void writeText(const std::string &path, const std::string &content) {
  writeWhole(path, content, std::ios::out);
}

bool fileExists(const std::string &path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

std::FILE *streamOf(const std::string &text) {
  std::FILE *stream = scratchStream();
  if (std::fwrite(text.data(), 1, text.size(), stream) != text.size())
    throw std::runtime_error("streamOf: cannot write");
  std::rewind(stream);
  return stream;
}

std::string writtenTo(const std::function<void(std::FILE *)> &write) {
  std::FILE *stream = scratchStream();
  write(stream);
  std::fflush(stream);
  std::rewind(stream);
  std::string text;
  char buffer[4096];
  while (size_t got = std::fread(buffer, 1, sizeof buffer, stream)) text.append(buffer, got);
  std::fclose(stream);
  return text;
}

void setTimeZone(const char *zone) {
#if defined(_WIN32)
  _putenv_s("TZ", zone);
  _tzset();
#else
  setenv("TZ", zone, 1);
  tzset();
#endif
}

ToolResult runTool(const std::vector<std::string> &args, const std::string &input,
                   const std::string &workDir) {
  TempDir io;
  writeFile(io.file("in"), input);
  ToolResult result;
  result.status = toolStatus(args, io.file("in"), io.file("out"), io.file("err"), workDir);
  result.out = readText(io.file("out"));
  result.err = readText(io.file("err"));
  return result;
}

AfterEachTest::AfterEachTest(std::function<void()> reset) {
  struct Listener : ::testing::EmptyTestEventListener {
    explicit Listener(std::function<void()> r) : reset(std::move(r)) {}
    void OnTestEnd(const ::testing::TestInfo &) override { reset(); }
    std::function<void()> reset;
  };
  ::testing::UnitTest::GetInstance()->listeners().Append(new Listener(std::move(reset)));
}

}  // namespace fskit::test
