// SPDX-License-Identifier: MIT
// runTool on POSIX: fork, redirect, exec.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "tests/support/test_support.h"

namespace fskit::test {

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
  result.out = readText(outPath);
  result.err = readText(errPath);
  return result;
}

}  // namespace fskit::test
