// SPDX-License-Identifier: MIT
// Runs every registered workload from eight threads at once, interleaved,
// and compares each round's result with the one-thread result.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <latch>
#include <mutex>

#include "tests/support/test_support.h"
#include "tests/threads/stress.h"

namespace fskit::stress {

std::vector<Workload> &workloads() {
  static std::vector<Workload> all;
  return all;
}

const std::string &scratchDir() {
  static fskit::test::TempDir dir;
  return dir.path();
}

namespace {

struct Mismatch {
  std::string workload;
  int worker, round;
  std::string expected, actual;
};

TEST(Stress, EveryFamilyFromEightThreadsMatchesOneThread) {
  std::vector<Workload> &all = workloads();
  ASSERT_FALSE(all.empty());
  // Files the workloads make by relative name (the message log) and what
  // the library prints (messages, sort progress) stay in the scratch folder.
  fskit::test::ChangeDir here(scratchDir());
  for (Workload &w : all)
    if (w.setUp) w.setUp();

  // expected[w][worker][round], from one thread.
  std::vector<std::vector<std::vector<std::string>>> expected(all.size());
  fskit::test::captureStdout([&] {
    for (size_t w = 0; w < all.size(); ++w) {
      expected[w].resize(kThreads);
      for (int worker = 0; worker < kThreads; ++worker)
        for (int round = 0; round < all[w].rounds; ++round)
          expected[w][worker].push_back(all[w].run(worker, round));
    }
  });

  std::mutex mismatchLock;
  std::vector<Mismatch> mismatches;
  std::atomic<long> calls{0};
  std::latch together(kThreads);
  int maxRounds = 0;
  for (const Workload &w : all) maxRounds = std::max(maxRounds, w.rounds);
  auto work = [&](int worker) {
    together.arrive_and_wait();
    // Each worker starts at another workload, so that every family runs
    // alongside every other one.
    for (int round = 0; round < maxRounds; ++round)
      for (size_t k = 0; k < all.size(); ++k) {
        size_t w = (k + size_t(worker)) % all.size();
        if (round >= all[w].rounds) continue;
        std::string actual = all[w].run(worker, round);
        calls.fetch_add(1, std::memory_order_relaxed);
        if (actual != expected[w][worker][round]) {
          std::lock_guard<std::mutex> lock(mismatchLock);
          mismatches.push_back({all[w].name, worker, round, expected[w][worker][round], actual});
        }
      }
  };
  const auto start = std::chrono::steady_clock::now();
  fskit::test::captureStdout([&] { onThreads(kThreads, work); });
  std::printf("stress: %d threads, %zu workloads, %ld rounds in %.2f s\n", kThreads, all.size(),
              calls.load(), std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  for (size_t i = 0; i < mismatches.size() && i < 20; ++i) {
    const Mismatch &m = mismatches[i];
    ADD_FAILURE() << m.workload << " worker " << m.worker << " round " << m.round
                  << "\n  one thread: " << m.expected << "\n  eight:      " << m.actual;
  }
  EXPECT_EQ(mismatches.size(), 0u);
}

}  // namespace
}  // namespace fskit::stress
