#include "tests/support/test_support.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fskit::test {

namespace {

std::string tempRoot() {
  const char *tmp = std::getenv("TMPDIR");
  return tmp != nullptr && *tmp != '\0' ? tmp : "/tmp";
}

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
  return readFile(path);
}

}  // namespace

std::string captureStdout(const std::function<void()> &body) {
  return capture(stdout, STDOUT_FILENO, body);
}

std::string captureStderr(const std::function<void()> &body) {
  return capture(stderr, STDERR_FILENO, body);
}

TempDir::TempDir() {
  std::string pattern = tempRoot() + "/fskit-test-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
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

std::string readFile(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}

void writeFile(const std::string &path, const std::string &content) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
  if (!out) throw std::runtime_error("cannot write " + path);
}

bool fileExists(const std::string &path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

void setTimeZone(const char *zone) {
  setenv("TZ", zone, 1);
  tzset();
}

ToolResult runTool(const std::vector<std::string> &args, const std::string &input,
                   const std::string &workDir) {
  TempDir io;
  std::string inPath = io.file("in"), outPath = io.file("out"), errPath = io.file("err");
  writeFile(inPath, input);
  pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    int in = open(inPath.c_str(), O_RDONLY);
    int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (in < 0 || out < 0 || err < 0) _exit(127);
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    if (!workDir.empty() && chdir(workDir.c_str()) != 0) _exit(127);
    std::vector<char *> argv;
    std::string tool = FSKIT_TOOL_PATH;
    argv.push_back(tool.data());
    std::vector<std::string> copies(args);
    for (auto &arg : copies) argv.push_back(arg.data());
    argv.push_back(nullptr);
    execv(tool.c_str(), argv.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ToolResult result;
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.out = readFile(outPath);
  result.err = readFile(errPath);
  return result;
}

}  // namespace fskit::test
