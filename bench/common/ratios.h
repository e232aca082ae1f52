// SPDX-License-Identifier: MIT
// Runs the registered benchmarks and then prints, for each comparison, the
// times of the candidate and of the baseline, both measured in this run, and
// their ratio: baseline / candidate by default (above 1: the candidate is
// faster), or candidate / baseline (below 1: the candidate is faster). CPU
// time by default: it holds up on a busy machine; "real" time where a
// benchmark sets its own (manual) time. With --benchmark_repetitions the
// median of the repetitions counts.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace fskit::bench {

// `baseline` may name several benchmarks joined by '|': the fastest of
// those that ran is the baseline, and the line names it.
struct Ratio {
  std::string candidate, baseline;
};

struct RatioOptions {
  bool realTime = false;               // the benchmarks' manual time, not CPU time
  bool candidateOverBaseline = false;  // print candidate / baseline
};

// The fastest of the '|'-separated names that ran: its name and seconds.
inline std::pair<std::string, double> fastestOf(const std::string &names,
                                                const std::map<std::string, double> &seconds) {
  std::pair<std::string, double> best{"", 0.0};
  size_t start = 0;
  while (start <= names.size()) {
    size_t end = names.find('|', start);
    if (end == std::string::npos) end = names.size();
    auto found = seconds.find(names.substr(start, end - start));
    if (found != seconds.end() && (best.first.empty() || found->second < best.second))
      best = *found;
    start = end + 1;
  }
  return best;
}

// Seconds per iteration of each benchmark: of its run, or the median of its
// repetitions (reported after them, so it replaces them; the other
// aggregates, such as the coefficient of variation, are no times).
class TimeKeeper : public benchmark::ConsoleReporter {
 public:
  explicit TimeKeeper(bool realTime) : realTime_(realTime) {}
  void ReportRuns(const std::vector<Run> &runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run &run : runs) {
      if (run.error_occurred) continue;
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
      double perIteration = realTime_ ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
      seconds_[run.run_name.function_name] =
          perIteration / benchmark::GetTimeUnitMultiplier(run.time_unit);
    }
  }
  const std::map<std::string, double> &seconds() const { return seconds_; }

 private:
  bool realTime_;
  std::map<std::string, double> seconds_;
};

// "12.3 us": three digits in the largest unit that keeps them at 1 or above.
inline std::string formatSeconds(double seconds) {
  static const struct {
    double scale;
    const char *unit;
  } kUnits[] = {{1.0, "s"}, {1e3, "ms"}, {1e6, "us"}, {1e9, "ns"}};
  size_t i = 0;
  while (i + 1 < std::size(kUnits) && seconds * kUnits[i].scale < 1.0) ++i;
  char text[32];
  std::snprintf(text, sizeof text, "%.3g %s", seconds * kUnits[i].scale, kUnits[i].unit);
  return text;
}

inline int runWithRatios(int argc, char **argv, const std::vector<Ratio> &ratios,
                         RatioOptions options = {}) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  TimeKeeper keeper(options.realTime);
  benchmark::RunSpecifiedBenchmarks(&keeper);
  std::printf("\n%-40s %-40s %10s %10s  %s, %s\n", "candidate", "baseline", "candidate",
              "baseline",
              options.candidateOverBaseline ? "candidate / baseline" : "baseline / candidate",
              options.realTime ? "manual time" : "CPU time");
  for (const Ratio &ratio : ratios) {
    auto candidate = keeper.seconds().find(ratio.candidate);
    auto baseline = fastestOf(ratio.baseline, keeper.seconds());
    if (candidate == keeper.seconds().end() || baseline.first.empty()) continue;
    double quotient = options.candidateOverBaseline ? candidate->second / baseline.second
                                                    : baseline.second / candidate->second;
    std::printf("%-40s %-40s %10s %10s  %.3g\n", ratio.candidate.c_str(), baseline.first.c_str(),
                formatSeconds(candidate->second).c_str(), formatSeconds(baseline.second).c_str(),
                quotient);
  }
  benchmark::Shutdown();
  return 0;
}

}  // namespace fskit::bench
