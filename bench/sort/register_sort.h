// SPDX-License-Identifier: MIT
// A sort benchmark that sorts a fresh copy of its input in each iteration;
// the copy is not timed.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

namespace fskit::bench {

// `input` must outlive the benchmark run.
template <class Buffer>
void registerSort(const std::string &name, const Buffer &input, std::function<void(Buffer &)> sort,
                  int iterations) {
  benchmark::RegisterBenchmark(name.c_str(), [&input, sort](benchmark::State &state) {
    Buffer work;
    for (auto _ : state) {
      state.PauseTiming();
      work = input;
      state.ResumeTiming();
      sort(work);
      benchmark::DoNotOptimize(work.data());
    }
  })->Unit(benchmark::kMillisecond)->Iterations(iterations);
}

}  // namespace fskit::bench
