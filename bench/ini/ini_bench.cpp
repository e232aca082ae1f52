// SPDX-License-Identifier: MIT
// Reading, walking and writing generated INI files of 1 MB and 20 MB through
// the handle API, against a plain fgets loop over the same file as the floor.
// Prints MB/s per benchmark, then each one's time as a multiple of the floor
// and the 20 MB time as a multiple of the 1 MB time (20 means linear).
#include <benchmark/benchmark.h>
#include <fskit/ini.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

namespace {

constexpr long kMegabyte = 1L << 20;

// A typical INI text of about `size` bytes: paragraphs of 100 lines with
// quoted values and comments behind values, each paragraph closed by a blank
// line and a comment about the next one (a blank or comment line ends a
// paragraph's walk, so they stand at its end).
std::string generatedText(long size) {
  std::string text;
  for (long line = 0; long(text.size()) < size; ++line) {
    std::string n = std::to_string(line);
    switch (int(line % 100)) {
      case 0: text += "[Section " + std::to_string(line / 100) + "]\n"; break;
      case 98: text += "\n"; break;
      case 99: text += "; the next section\n"; break;
      default:
        if (line % 10 == 2) text += "quoted" + n + " = \"a;" + n + "\"\n";
        else if (line % 10 == 3) text += "noted" + n + " = value " + n + "\t; a note\n";
        else text += "topic" + n + " = value number " + n + "\n";
    }
  }
  return text;
}

// The generated files, made once per size in a directory removed at exit.
std::string directory;

void removeDirectory() {
  std::error_code ignored;  // at exit there is no one left to tell
  if (!directory.empty()) std::filesystem::remove_all(directory, ignored);
}

const std::string &fileOf(long megabytes) {
  static std::map<long, std::string> files;
  std::string &path = files[megabytes];
  if (path.empty()) {
    if (directory.empty()) {
      char pattern[] = "/tmp/fskit-ini-bench-XXXXXX";
      directory = mkdtemp(pattern);
      std::atexit(removeDirectory);
    }
    path = directory + "/generated-" + std::to_string(megabytes) + "mb.ini";
    std::string text = generatedText(megabytes * kMegabyte);
    std::FILE *out = std::fopen(path.c_str(), "w");
    std::fwrite(text.data(), 1, text.size(), out);
    std::fclose(out);
  }
  return path;
}

long sizeOf(const std::string &path) {
  std::FILE *in = std::fopen(path.c_str(), "r");
  std::fseek(in, 0, SEEK_END);
  long size = std::ftell(in);
  std::fclose(in);
  return size;
}

void fgetsFloor(benchmark::State &state) {
  const std::string &path = fileOf(state.range(0));
  for (auto _ : state) {
    std::FILE *in = std::fopen(path.c_str(), "r");
    char line[1023];
    long lines = 0;
    while (std::fgets(line, sizeof line, in) != nullptr) ++lines;
    std::fclose(in);
    benchmark::DoNotOptimize(lines);
  }
  state.SetBytesProcessed(state.iterations() * sizeOf(path));
}

void read(benchmark::State &state) {
  const std::string &path = fileOf(state.range(0));
  for (auto _ : state) {
    int32_t handle = fsIniReadFile(path.c_str());
    if (handle == 0) state.SkipWithError("cannot read");
    fsIniReleaseFile(handle);
  }
  state.SetBytesProcessed(state.iterations() * sizeOf(path));
}

void walk(benchmark::State &state) {
  const std::string &path = fileOf(state.range(0));
  int32_t handle = fsIniReadFile(path.c_str());
  static char paragraph[1100], topic[1100], value[1100];
  for (auto _ : state) {
    long values = 0;
    for (int32_t first = 1; fsIniNext(first, handle, paragraph, topic, value) == 1; first = 0)
      ++values;
    benchmark::DoNotOptimize(values);
  }
  fsIniReleaseFile(handle);
  state.SetBytesProcessed(state.iterations() * sizeOf(path));
}

// Writes the document back over a copy of the file, as an application saving
// its settings does: the old file is replaced. The write releases the handle,
// so each round reads the copy again outside the timing.
void write(benchmark::State &state) {
  const std::string &path = fileOf(state.range(0));
  std::string target = path + ".copy";
  std::filesystem::copy_file(path, target, std::filesystem::copy_options::overwrite_existing);
  for (auto _ : state) {
    state.PauseTiming();
    int32_t handle = fsIniReadFile(target.c_str());
    state.ResumeTiming();
    if (fsIniWriteFile(handle) != 1) state.SkipWithError("cannot write");
  }
  state.SetBytesProcessed(state.iterations() * sizeOf(path));
}

BENCHMARK(fgetsFloor)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(read)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(walk)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(write)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);

// Keeps each run's real and CPU seconds per iteration for the ratios printed
// at the end.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run> &runs) override {
    for (const Run &run : runs)
      if (run.run_type == Run::RT_Iteration && !run.error_occurred && run.iterations > 0) {
        real[run.benchmark_name()] = run.real_accumulated_time / double(run.iterations);
        cpu[run.benchmark_name()] = run.cpu_accumulated_time / double(run.iterations);
      }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> real, cpu;
};

void printRatios(const char *title, std::map<std::string, double> &seconds) {
  std::printf("\n%-12s %14s %14s %14s\n", title, "1 MB / fgets", "20 MB / fgets",
              "20 MB / 1 MB");
  double floorSmall = seconds["fgetsFloor/1"], floorLarge = seconds["fgetsFloor/20"];
  for (const char *name : {"fgetsFloor", "read", "walk", "write"}) {
    double small = seconds[std::string(name) + "/1"], large = seconds[std::string(name) + "/20"];
    if (small <= 0 || large <= 0 || floorSmall <= 0 || floorLarge <= 0) continue;
    std::printf("%-12s %14.2f %14.2f %14.2f\n", name, small / floorSmall, large / floorLarge,
                large / small);
  }
}

}  // namespace

int main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  printRatios("real time", reporter.real);
  printRatios("CPU time", reporter.cpu);
  benchmark::Shutdown();
  return 0;
}
