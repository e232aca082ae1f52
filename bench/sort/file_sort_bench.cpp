// SPDX-License-Identifier: MIT
// fsStrSort on generated text files, in memory and through 16 MiB work files,
// against GNU sort (LC_ALL=C, --parallel=1) with the same memory. Two kinds
// of lines: words (few ties beyond the first bytes) and log lines (timestamp,
// host and message text shared by hundreds of lines, 60-100 bytes, then a
// varying tail). 50 MB files run by default; --large adds 300 MB ones. Files
// live in a temporary directory removed at the end. Ratios compare processor
// time (user + system), wall times are shown too; "memory / work files" above
// 1 means the in-memory sort is the faster.
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

#include "bench/common/ratios.h"

namespace {

std::string workDir;

void writeFile(const std::string &path, const std::string &text) {
  std::FILE *file = std::fopen(path.c_str(), "wb");
  std::fwrite(text.data(), 1, text.size(), file);
  std::fclose(file);
}

// A few words from a vocabulary and a number.
std::string wordLines(size_t bytes) {
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
  return text;
}

// Log lines in no order: one of 600 seconds, 4 hosts and 4 messages, so that
// each (second, host, message) is shared by bytes/80000 lines, and a tail of
// a hex id and a latency.
std::string logLines(size_t bytes) {
  std::mt19937_64 random(bytes + 1);
  const char *hosts[] = {"web-01.eu-west.example.internal", "web-02.eu-west.example.internal",
                         "api-01.us-east.example.internal", "api-02.us-east.example.internal"};
  const char *messages[] = {"INFO GET /api/v2/accounts/session HTTP/1.1 200",
                            "INFO GET /api/v2/accounts/profile HTTP/1.1 200",
                            "INFO POST /api/v2/orders HTTP/1.1 201",
                            "WARN GET /api/v2/orders/search HTTP/1.1 429"};
  std::string text;
  text.reserve(bytes + 200);
  char line[256];
  while (text.size() < bytes) {
    unsigned second = unsigned(random() % 600);
    int length = std::snprintf(line, sizeof line,
                               "2026-11-26T02:%02u:%02uZ %s nginx[2231]: %s id=%08x t=%ums\n",
                               second / 60, second % 60, hosts[random() % 4],
                               messages[random() % 4], unsigned(random()),
                               unsigned(random() % 2000));
    text.append(line, size_t(length));
  }
  return text;
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

constexpr long kWorkFileBytes = 16L << 20;

void registerFile(const std::string &label, const std::string &text) {
  std::string input = workDir + "/" + label + ".txt", output = workDir + "/sorted.txt";
  writeFile(input, text);
  long size = long(text.size());
  for (long buffer : {0L, kWorkFileBytes}) {
    std::string mode = buffer == 0 ? "memory" : "work_files";
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
  std::vector<size_t> sizes = {50};
  if (large) sizes.push_back(300);
  for (size_t megabytes : sizes) {
    for (std::string kind : {"words", "log"}) {
      std::string label = kind + std::to_string(megabytes) + "MB";
      size_t bytes = megabytes << 20;
      registerFile(label, kind == "words" ? wordLines(bytes) : logLines(bytes));
      for (std::string mode : {"memory", "work_files"})
        ratios.push_back({label + "/fsStrSort_" + mode, label + "/gnu_sort_" + mode});
      // Above 1: the in-memory sort beats the same sort through work files.
      ratios.push_back({label + "/fsStrSort_memory", label + "/fsStrSort_work_files"});
    }
  }
  int argcLeft = int(args.size());
  int status = fskit::bench::runWithRatios(argcLeft, args.data(), ratios,
                                           {.realTime = true});  // manual time = CPU
  std::filesystem::remove_all(workDir);
  return status;
}
