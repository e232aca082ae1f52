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

namespace {

std::string capture(std::FILE *stream, int fd, const std::function<void()> &body) {
  TempDir dir;
  std::string path = dir.file("capture");
  std::fflush(stream);
  int saved = dup(fd);
  int target = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (saved < 0 || target < 0) throw std::runtime_error("capture: cannot redirect");
  dup2(target, fd);
  close(target);
  body();
  std::fflush(stream);
  dup2(saved, fd);
  close(saved);
  return readText(path);
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

// An empty read-write binary stream whose file is removed when it is closed.
std::FILE *scratchStream() {
#if defined(_WIN32)
  // The C runtime's tmpfile() writes to the drive's root; this goes to
  // %TEMP%, and "D" deletes it at its close.
  static std::atomic<unsigned> counter{0};
  auto name = "fskit-scratch-" + std::to_string(std::random_device{}()) + "-" +
              std::to_string(counter++);
  std::string path = (std::filesystem::temp_directory_path() / name).string();
  std::FILE *stream = std::fopen(path.c_str(), "w+bD");
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

TempDir::TempDir() {
  // $TMPDIR (POSIX) or %TEMP% (Windows); a name nobody else has, as creating
  // the directory proves.
  static std::atomic<unsigned> counter{0};
  std::filesystem::path root = std::filesystem::temp_directory_path();
  unsigned seed = std::random_device{}();
  for (int attempt = 0; attempt < 100; ++attempt) {
    auto name = "fskit-test-" + std::to_string(seed) + "-" + std::to_string(counter++);
    if (std::filesystem::create_directory(root / name)) {
      path_ = (root / name).string();
      return;
    }
  }
  throw std::runtime_error("no temporary directory could be made");
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::file(const std::string &name) const { return path_ + "/" + name; }

ChangeDir::ChangeDir(const std::string &path) {
  previous_ = std::filesystem::current_path().string();
  std::filesystem::current_path(path);
}

ChangeDir::~ChangeDir() {
  std::error_code ignored;
  std::filesystem::current_path(previous_, ignored);
}

StdinFrom::StdinFrom(const std::string &content) : saved_(dup(STDIN_FILENO)) {
  std::string path = dir_.file("stdin");
  writeFile(path, content);
  int file = open(path.c_str(), O_RDONLY);
  if (saved_ < 0 || file < 0) throw std::runtime_error("StdinFrom: cannot redirect");
  dup2(file, STDIN_FILENO);
  close(file);
}

StdinFrom::~StdinFrom() {
  dup2(saved_, STDIN_FILENO);
  close(saved_);
}

std::string readFile(const std::string &path) { return readWhole(path, std::ios::binary); }

// Text mode differs from binary on Windows only, where it reads CR LF as LF.
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

AfterEachTest::AfterEachTest(std::function<void()> reset) {
  struct Listener : ::testing::EmptyTestEventListener {
    explicit Listener(std::function<void()> r) : reset(std::move(r)) {}
    void OnTestEnd(const ::testing::TestInfo &) override { reset(); }
    std::function<void()> reset;
  };
  ::testing::UnitTest::GetInstance()->listeners().Append(new Listener(std::move(reset)));
}

}  // namespace fskit::test
