// SPDX-License-Identifier: MIT
// Runs every registered workload from eight threads at once, interleaved, against one thread.
#include <gtest/gtest.h>

#include <algorithm>
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

TEST(Stress, EveryFamilyFromEightThreadsMatchesOneThread) {
  std::vector<Workload> &all = workloads();
  ASSERT_FALSE(all.empty());
  // Files made by relative name (the message log) stay in the scratch folder.
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
  std::vector<std::string> mismatches;
  std::latch together(kThreads);
  const int maxRounds = std::ranges::max(all, {}, &Workload::rounds).rounds;
  // Each worker starts at another workload, so that every family runs beside every other one.
  auto work = [&](int worker) {
    together.arrive_and_wait();
    for (int round = 0; round < maxRounds; ++round)
      for (size_t k = 0; k < all.size(); ++k) {
        size_t w = (k + size_t(worker)) % all.size();
        if (round >= all[w].rounds) continue;
        std::string actual = all[w].run(worker, round);
        const std::string &want = expected[w][worker][round];
        if (actual == want) continue;
        std::lock_guard<std::mutex> lock(mismatchLock);
        mismatches.push_back(all[w].name + " worker " + std::to_string(worker) + " round " +
                             std::to_string(round) + "\n  one thread: " + want +
                             "\n  eight:      " + actual);
      }
  };
  fskit::test::captureStdout([&] { onThreads(kThreads, work); });
  for (size_t i = 0; i < mismatches.size() && i < 20; ++i) ADD_FAILURE() << mismatches[i];
  EXPECT_EQ(mismatches.size(), 0u);
}

}  // namespace
}  // namespace fskit::stress
