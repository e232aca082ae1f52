// SPDX-License-Identifier: MIT
// The string scanners on 1 MB inputs against the C library and a plain copy
// loop, measured in the same run; the ratios are printed at the end.
#include <benchmark/benchmark.h>
#include <fnmatch.h>
#include <fskit/strings.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr size_t kSize = 1 << 20;

// 1 MB of words of random lower-case letters separated by runs of blanks and
// tabs, ending with `tail`, so that every scan has to cross the whole text.
std::string makeText(const std::string &tail) {
  std::mt19937 engine(42);
  std::uniform_int_distribution<int> letter('a', 'z'), word(1, 9), gap(1, 3);
  std::string s;
  s.reserve(kSize);
  while (s.size() + tail.size() + 16 < kSize) {
    for (int i = word(engine); i > 0; --i) s += char(letter(engine));
    for (int i = gap(engine); i > 0; --i) s += (i % 2) ? ' ' : '\t';
  }
  s.resize(kSize - tail.size(), 'x');
  return s + tail;
}

const std::string &text() {
  static const std::string s = makeText("the needle.dat");
  return s;
}

// A text copy loop that stops at the NUL: the least any scan must do.
void copyLoop(benchmark::State &state) {
  std::vector<char> dst(kSize + 1);
  for (auto _ : state) {
    const char *in = text().c_str();
    char *out = dst.data();
    while ((*out++ = *in++) != '\0') {
    }
    benchmark::DoNotOptimize(dst.data());
    benchmark::ClobberMemory();
  }
}

void libcStrstr(benchmark::State &state) {
  for (auto _ : state) benchmark::DoNotOptimize(std::strstr(text().c_str(), "needle"));
}

void fskitStridx(benchmark::State &state) {
  for (auto _ : state) benchmark::DoNotOptimize(stridx("needle", text().c_str()));
}

void libcFnmatch(benchmark::State &state) {
  for (auto _ : state) benchmark::DoNotOptimize(fnmatch("*ne?dle*.dat", text().c_str(), 0));
}

void fskitStrwildcmp(benchmark::State &state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(strwildcmp("*ne?dle*.dat", text().c_str(), '?', '*'));
}

void fskitStrcompress(benchmark::State &state) {
  std::vector<char> work(kSize + 1);
  for (auto _ : state) {
    state.PauseTiming();
    std::memcpy(work.data(), text().c_str(), kSize + 1);
    state.ResumeTiming();
    benchmark::DoNotOptimize(strcompress(work.data()));
  }
}

void fskitStrqtoks(benchmark::State &state) {
  std::vector<char *> starts(kSize / 2);
  std::vector<int32_t> lengths(kSize / 2);
  for (auto _ : state)
    benchmark::DoNotOptimize(strqtoks(text().c_str(), " \t", int32_t(starts.size()),
                                      starts.data(), lengths.data()));
}

BENCHMARK(copyLoop)->Unit(benchmark::kMicrosecond);
BENCHMARK(libcStrstr)->Unit(benchmark::kMicrosecond);
BENCHMARK(fskitStridx)->Unit(benchmark::kMicrosecond);
BENCHMARK(libcFnmatch)->Unit(benchmark::kMicrosecond);
BENCHMARK(fskitStrwildcmp)->Unit(benchmark::kMicrosecond);
BENCHMARK(fskitStrcompress)->Unit(benchmark::kMicrosecond);
BENCHMARK(fskitStrqtoks)->Unit(benchmark::kMicrosecond);

// Passes every run on to the console and keeps each repetition's CPU time
// per iteration (CPU time, since the machine may be shared).
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run> &runs) override {
    // With --benchmark_report_aggregates_only only the aggregates arrive.
    for (const Run &run : runs) {
      const double time = run.cpu_accumulated_time / double(std::max<int64_t>(run.iterations, 1));
      if (run.run_type == Run::RT_Iteration)
        times_[run.run_name.function_name].push_back(time);
      else if (run.aggregate_name == "median")
        times_[run.run_name.function_name] = {time};
    }
    ConsoleReporter::ReportRuns(runs);
  }
  // The median over the repetitions, or 0 when the benchmark did not run.
  double median(const std::string &name) {
    std::vector<double> &times = times_[name];
    if (times.empty()) return 0;
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
  }

 private:
  std::map<std::string, std::vector<double>> times_;
};

}  // namespace

int main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const std::pair<const char *, const char *> ratios[] = {
      {"fskitStridx", "libcStrstr"},     {"fskitStridx", "copyLoop"},
      {"fskitStrwildcmp", "libcFnmatch"}, {"fskitStrwildcmp", "copyLoop"},
      {"fskitStrcompress", "copyLoop"},  {"fskitStrqtoks", "copyLoop"},
  };
  std::printf("\nratios of median CPU time per 1 MB (lower is faster):\n");
  for (auto [subject, baseline] : ratios) {
    const double a = reporter.median(subject), b = reporter.median(baseline);
    if (a > 0 && b > 0) std::printf("  %-16s / %-12s %6.2f\n", subject, baseline, a / b);
  }
  benchmark::Shutdown();
  return 0;
}
