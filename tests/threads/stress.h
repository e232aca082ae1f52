// SPDX-License-Identifier: MIT
// The multi-threaded stress test: each family registers workloads, and the
// test runs all of them from eight threads at once, comparing every result
// with the same work done on one thread.
#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace fskit::stress {

inline constexpr int kThreads = 8;

// One kind of work. `run(worker, round)` makes the library calls of one
// round for one worker and returns a text that depends only on the two
// numbers: the same whether the rounds run on one thread or on eight side by
// side. Where the library may legitimately give one of several answers (a
// parse during a table reload), `run` checks that itself and returns a
// fixed text for "one of the allowed answers".
struct Workload {
  std::string name;
  int rounds;  // per worker
  std::function<std::string(int worker, int round)> run;
  // Optional: prepares shared inputs once, before the single-thread pass.
  std::function<void()> setUp = nullptr;
};

std::vector<Workload> &workloads();

// Adds a workload at static initialisation.
struct Registration {
  explicit Registration(Workload workload) { workloads().push_back(std::move(workload)); }
};

// A directory private to this test process, removed at exit.
const std::string &scratchDir();

// Runs `body(i)` for i = 0 .. threads-1, each on a thread of its own, and
// waits for all of them.
template <typename Body>
void onThreads(int threads, Body body) {
  std::vector<std::thread> all;
  for (int i = 0; i < threads; ++i) all.emplace_back(body, i);
  for (std::thread &t : all) t.join();
}

}  // namespace fskit::stress
