// SPDX-License-Identifier: MIT
// Formula parsing and element lookup against the shipped element file.
//
// Baselines, measured in the same run: for a parse, copying the formula text
// (the least any parser does with it); for a lookup, a linear search over a
// copy of the records, which is what the index replaces. After the usual
// table the program prints each measurement as a multiple of its baseline
// and as operations per second.
#include <benchmark/benchmark.h>
#include <fskit/chemistry.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

const struct {
  const char *name, *formula;
} kFormulas[] = {
    {"glucose", "C6H12O6"},
    {"cholesterol", "C27H46O"},
    {"protein", "C254H377N65O75S6"},
    {"isotope_separated", "C5 13C H12 O6"},
    {"lower_case", "c6h12o6"},
    {"dotted", "NA.CL"},
};

void copyFormula(benchmark::State &state, const char *formula) {
  char buffer[512];
  for (auto _ : state) {
    benchmark::DoNotOptimize(formula);
    std::strcpy(buffer, formula);
    benchmark::DoNotOptimize(buffer);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations());
}

void parseFormula(benchmark::State &state, const char *formula) {
  char text[512];
  int32_t nominal;
  double mono, average, rdb;
  for (auto _ : state) {
    benchmark::DoNotOptimize(formula);
    int32_t found = fsTblParseMF(formula, 0, 0, text, &nominal, &mono, &average, &rdb, 0,
                                 nullptr, nullptr, nullptr, nullptr);
    benchmark::DoNotOptimize(found);
    benchmark::DoNotOptimize(mono);
  }
  state.SetItemsProcessed(state.iterations());
}

void parseRange(benchmark::State &state, const char *formula) {
  int32_t low[100], high[100];
  for (auto _ : state) {
    benchmark::DoNotOptimize(formula);
    int32_t tokens = fsTblParseMFRange(formula, 0, 0, nullptr, low, high, nullptr, nullptr,
                                       nullptr);
    benchmark::DoNotOptimize(tokens);
    benchmark::DoNotOptimize(low);
  }
  state.SetItemsProcessed(state.iterations());
}

void linearLookup(benchmark::State &state, const char *label) {
  std::vector<FsElementRecord> records(static_cast<size_t>(fsElementTableCount()));
  for (size_t i = 0; i < records.size(); ++i) fsGetElementInfo(int32_t(i), &records[i]);
  for (auto _ : state) {
    benchmark::DoNotOptimize(label);
    int32_t found = -1;
    for (size_t i = 0; i < records.size() && found < 0; ++i)
      if (std::strncmp(records[i].label, label, sizeof records[i].label) == 0 &&
          std::strlen(label) <= sizeof records[i].label)
        found = int32_t(i);
    benchmark::DoNotOptimize(found);
  }
  state.SetItemsProcessed(state.iterations());
}

void lookup(benchmark::State &state, const char *label) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(label);
    benchmark::DoNotOptimize(fsFindElemInTbl(label));
  }
  state.SetItemsProcessed(state.iterations());
}

// Keeps each run's CPU time per iteration and prints the ratios at the end.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  RatioReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run> &runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run &run : runs)
      if (!run.error_occurred && run.run_type == Run::RT_Iteration)
        nanoseconds_[run.benchmark_name()] = run.GetAdjustedCPUTime();
  }

  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("\n%-36s %-28s %10s %14s\n", "measurement", "baseline", "x baseline",
                "per second");
    for (const auto &[name, ns] : nanoseconds_) {
      std::string kind = name.substr(0, name.find('/'));
      std::string subject = name.substr(name.find('/'));
      std::string base = kind == "lookup"  ? "linear_lookup" + subject
                         : kind == "parse" || kind == "range" ? "copy" + subject
                                                               : "";
      auto baseline = nanoseconds_.find(base);
      if (baseline == nanoseconds_.end()) continue;
      std::printf("%-36s %-28s %10.3g %14.0f\n", name.c_str(), base.c_str(),
                  ns / baseline->second, 1e9 / ns);
    }
  }

 private:
  std::map<std::string, double> nanoseconds_;
};

}  // namespace

int main(int argc, char **argv) {
  if (fsLoadElemTable(FSKIT_ELEMENT_FILE) != 1) return 1;
  for (const auto &f : kFormulas) {
    benchmark::RegisterBenchmark((std::string("copy/") + f.name).c_str(), copyFormula, f.formula);
    benchmark::RegisterBenchmark((std::string("parse/") + f.name).c_str(), parseFormula,
                                 f.formula);
  }
  const char *ranged = "C6_10H10..20!O*2N0_4";
  benchmark::RegisterBenchmark("copy/ranges", copyFormula, ranged);
  benchmark::RegisterBenchmark("range/ranges", parseRange, ranged);
  for (const char *label : {"C", "Zr", "96Zr", "Xx"}) {
    benchmark::RegisterBenchmark((std::string("linear_lookup/") + label).c_str(), linearLookup,
                                 label);
    benchmark::RegisterBenchmark((std::string("lookup/") + label).c_str(), lookup, label);
  }
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
