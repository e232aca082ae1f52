// SPDX-License-Identifier: MIT
// The tool's process on Windows: CreateProcess with the standard handles on files.
#include <windows.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace fskit::test {
namespace {

// One argument as the C runtime's command-line parser gives it back:
// quoted when needed, backslashes doubled only before a quote.
std::string quoted(const std::string &arg) {
  if (!arg.empty() && arg.find_first_of(" \t\n\v\"") == std::string::npos) return arg;
  std::string out = "\"";
  size_t backslashes = 0;
  for (char c : arg) {
    if (c == '\\') {
      ++backslashes;
      continue;
    }
    out.append(c == '"' ? 2 * backslashes + 1 : backslashes, '\\');
    backslashes = 0;
    out += c;
  }
  out.append(2 * backslashes, '\\');
  return out + '"';
}

HANDLE openInherited(const std::string &path, bool write) {
  SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
  HANDLE handle = CreateFileA(path.c_str(), write ? GENERIC_WRITE : GENERIC_READ,
                              FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                              write ? CREATE_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) throw std::runtime_error("runTool: cannot open " + path);
  return handle;
}

}  // namespace

int toolStatus(const std::vector<std::string> &args, const std::string &in, const std::string &out,
               const std::string &err, const std::string &workDir) {
  std::string tool = FSKIT_TOOL_PATH;
  std::string commandLine = quoted(tool);
  for (const std::string &arg : args) commandLine += " " + quoted(arg);
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = openInherited(in, false);
  startup.hStdOutput = openInherited(out, true);
  startup.hStdError = openInherited(err, true);
  PROCESS_INFORMATION process = {};
  // wine now and then fails to start a process it starts the next time: three tries, a moment
  // apart (CreateProcessA may write into its line).
  BOOL started = FALSE;
  DWORD error = 0;
  for (int attempt = 0; attempt < 3 && !started; ++attempt) {
    if (attempt > 0) Sleep(200);
    std::string line = commandLine;
    started = CreateProcessA(tool.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                             workDir.empty() ? nullptr : workDir.c_str(), &startup, &process);
    if (!started) error = GetLastError();
  }
  for (HANDLE handle : {startup.hStdInput, startup.hStdOutput, startup.hStdError})
    CloseHandle(handle);
  if (!started)
    throw std::runtime_error("runTool: cannot start " + tool + " (error " +
                             std::to_string(error) + ")");
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  // An exception (access violation and the like) ends a process with its NTSTATUS code, where
  // POSIX would report a signal.
  return code >= 0xC0000000u ? -1 : int(code);
}

}  // namespace fskit::test
