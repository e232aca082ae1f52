// SPDX-License-Identifier: MIT
// fsStrSort on a generated text file, in memory and with a buffer of a tenth
// of the file (ten work files), against GNU sort (LC_ALL=C, --parallel=1)
// with the same memory. The 50 MB file runs by default; --large adds a
// 300 MB one. Files live in a temporary directory removed at the end.
// Ratios compare processor time (user + system), wall times are shown too.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fskit/sort.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "bench/sort/ratios.h"

namespace {

std::string workDir;

// Log-like lines: a few words from a vocabulary and a number.
void writeText(const std::string &path, size_t bytes) {
  std::mt19937_64 random(bytes);
  std::vector<std::string> words(5000);
  for (auto &word : words)
    for (size_t k = 3 + random() % 8; k > 0; --k) word += char('a' + random() % 26);
  std::string text;
  text.reserve(bytes + 200);
  while (text.size() < bytes) {
    for (size_t k = 2 + random() % 7; k > 0; --k) text += words[random() % words.size()] + ' ';
    text += std::to_string(random() % 100000) + '\n';
  }
  std::FILE *file = std::fopen(path.c_str(), "wb");
  std::fwrite(text.data(), 1, text.size(), file);
  std::fclose(file);
}

// fsStrSort prints its progress; it goes to /dev/null while timed.
long quietSort(const std::string &input, const std::string &output, long buffer) {
  std::fflush(stdout);
  int saved = dup(STDOUT_FILENO), null = open("/dev/null", O_WRONLY);
  dup2(null, STDOUT_FILENO);
  long lines = fsStrSort(input.c_str(), output.c_str(), (workDir + "/").c_str(), buffer, 1, 0);
  std::fflush(stdout);
  dup2(saved, STDOUT_FILENO);
  close(saved);
  close(null);
  return lines;
}

double cpuSeconds(int who) {
  rusage usage;
  getrusage(who, &usage);
  return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

// Times `job` by the processor time it takes (this process or its children),
// which holds up on a busy machine; the wall time goes into a counter.
void registerTimed(const std::string &name, long bytes, int who, std::function<bool()> job) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
    double wall = 0;
    for (auto _ : state) {
      auto start = std::chrono::steady_clock::now();
      double cpu = cpuSeconds(who);
      if (!job()) state.SkipWithError("sort failed");
      state.SetIterationTime(cpuSeconds(who) - cpu);
      wall += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["wall_ms"] = 1000 * wall / double(state.iterations());
  })->Unit(benchmark::kMillisecond)->Iterations(2)->UseManualTime();
}

void registerFile(const std::string &label, size_t bytes) {
  std::string input = workDir + "/" + label + ".txt", output = workDir + "/sorted.txt";
  writeText(input, bytes);
  long size = long(std::filesystem::file_size(input));
  for (long buffer : {0L, size / 10}) {
    std::string mode = buffer == 0 ? "memory" : "chunks10";
    registerTimed(label + "/fsStrSort_" + mode, size, RUSAGE_SELF,
                  [=] { return quietSort(input, output, buffer) != 0; });
    long memory = buffer == 0 ? 2 * size : buffer;
    std::string command = "LC_ALL=C sort --parallel=1 -S " + std::to_string(memory) + "b -T " +
                          workDir + " -o " + output + " " + input;
    registerTimed(label + "/gnu_sort_" + mode, size, RUSAGE_CHILDREN,
                  [=] { return std::system(command.c_str()) == 0; });
  }
}

}  // namespace

int main(int argc, char **argv) {
  bool large = false;
  std::vector<char *> args;
  for (int k = 0; k < argc; ++k) {
    if (std::strcmp(argv[k], "--large") == 0) large = true;
    else args.push_back(argv[k]);
  }
  const char *tmp = std::getenv("TMPDIR");
  std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/fskit-sort-bench-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) return 1;
  workDir = pattern;

  std::vector<fskit::bench::Ratio> ratios;
  std::vector<std::string> labels = {"text50MB"};
  if (large) labels.push_back("text300MB");
  for (const std::string &label : labels) {
    registerFile(label, (label == "text50MB" ? 50u : 300u) << 20);
    for (std::string mode : {"memory", "chunks10"})
      ratios.push_back({label + "/fsStrSort_" + mode, label + "/gnu_sort_" + mode});
  }
  int argcLeft = int(args.size());
  int status = fskit::bench::runWithRatios(argcLeft, args.data(), ratios, true);  // manual time = CPU
  std::filesystem::remove_all(workDir);
  return status;
}
