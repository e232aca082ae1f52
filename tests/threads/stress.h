// SPDX-License-Identifier: MIT
// Workloads that each family registers; stress_test.cpp runs them all from eight threads at once.
#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace fskit::stress {

inline constexpr int kThreads = 8;

// `run(worker, round)` returns a text that depends only on the two numbers (where several answers
// are allowed, it checks them itself and returns a fixed text); `setUp` prepares shared inputs.
struct Workload {
  std::string name;
  int rounds;  // per worker
  std::function<std::string(int worker, int round)> run;
  std::function<void()> setUp = nullptr;
};

std::vector<Workload> &workloads();

struct Registration {
  explicit Registration(Workload workload) { workloads().push_back(std::move(workload)); }
};

// A directory private to this test process, removed at exit.
const std::string &scratchDir();

// Runs `body(i)` for i = 0 .. threads-1, each on a thread of its own, and waits for them.
template <typename Body>
void onThreads(int threads, Body body) {
  std::vector<std::thread> all;
  for (int i = 0; i < threads; ++i) all.emplace_back(body, i);
  for (std::thread &t : all) t.join();
}

}  // namespace fskit::stress
