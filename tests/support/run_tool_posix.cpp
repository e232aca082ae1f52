// SPDX-License-Identifier: MIT
// The tool's process on POSIX: fork, redirect, exec.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace fskit::test {

int toolStatus(const std::vector<std::string> &args, const std::string &in, const std::string &out,
               const std::string &err, const std::string &workDir) {
  pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    int input = open(in.c_str(), O_RDONLY);
    int output = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    int errors = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (input < 0 || output < 0 || errors < 0) _exit(127);
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    if (!workDir.empty() && chdir(workDir.c_str()) != 0) _exit(127);
    std::string tool = FSKIT_TOOL_PATH;
    std::vector<std::string> copies(args);
    std::vector<char *> argv{tool.data()};
    for (auto &arg : copies) argv.push_back(arg.data());
    argv.push_back(nullptr);
    execv(tool.c_str(), argv.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace fskit::test
