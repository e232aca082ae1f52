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
#include <vector>

namespace fskit::bench {

struct Ratio {
  std::string candidate, baseline;
};

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
    auto baseline = keeper.seconds().find(ratio.baseline);
    if (candidate == keeper.seconds().end() || baseline == keeper.seconds().end()) continue;
    std::printf("%-40s %-40s %.2f\n", ratio.candidate.c_str(), ratio.baseline.c_str(),
                baseline->second / candidate->second);
  }
  benchmark::Shutdown();
  return 0;
}

}  // namespace fskit::bench
