// SPDX-License-Identifier: MIT
// Runs the registered benchmarks and then prints, for each comparison, the
// time of the baseline divided by the time of the candidate, both measured
// in this run (above 1: the candidate is faster). CPU time by default: it
// holds up on a busy machine; "real" time where a benchmark sets its own
// (manual) time.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
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

class TimeKeeper : public benchmark::ConsoleReporter {
 public:
  explicit TimeKeeper(bool realTime) : realTime_(realTime) {}
  void ReportRuns(const std::vector<Run> &runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run &run : runs)
      if (!run.error_occurred)
        seconds_[run.run_name.function_name] =
            realTime_ ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
  }
  const std::map<std::string, double> &seconds() const { return seconds_; }

 private:
  bool realTime_;
  std::map<std::string, double> seconds_;
};

inline int runWithRatios(int argc, char **argv, const std::vector<Ratio> &ratios,
                         bool realTime = false) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  TimeKeeper keeper(realTime);
  benchmark::RunSpecifiedBenchmarks(&keeper);
  std::printf("\n%-40s %-40s %s\n", "candidate", "baseline", realTime ? "baseline / candidate, manual time" : "baseline / candidate, CPU time");
  for (const Ratio &ratio : ratios) {
    auto candidate = keeper.seconds().find(ratio.candidate);
    auto baseline = fastestOf(ratio.baseline, keeper.seconds());
    if (candidate == keeper.seconds().end() || baseline.first.empty()) continue;
    std::printf("%-40s %-40s %.2f\n", ratio.candidate.c_str(), baseline.first.c_str(),
                baseline.second / candidate->second);
  }
  benchmark::Shutdown();
  return 0;
}

}  // namespace fskit::bench
