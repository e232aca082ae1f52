// SPDX-License-Identifier: MIT
// Allocation failures for the fault tests: malloc, calloc, realloc and strdup are linked with
// --wrap and operator new takes malloc, so every allocation meets one counter.
#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>

namespace fskit::test {

// Fails the k-th allocation (1-based) from now on and every one after it; k <= 0 disarms.
void failAllocationFrom(long k);
// Fails the k-th allocation only: a retry after it succeeds.
void failOnlyAllocation(long k);
// Refuses every allocation of more than `bytes`, armed or not; 0 lifts the limit.
void refuseAllocationsAbove(size_t bytes);

// For k = 1, 2, ... runs `call` with allocations failing from the k-th on, then, disarmed,
// `check(k, refused)`, until a run refuses nothing; returns the number of runs.
long forEachAllocationFailure(const std::function<void()> &call,
                              const std::function<void(long k, bool refused)> &check);
// The same with only the k-th allocation failing, for paths that retry or fall back.
long forEachSingleAllocationFailure(const std::function<void()> &call,
                                    const std::function<void(long k, bool refused)> &check);

// Catches what the library prints on `stream` (stdout or stderr) while armed: start() and
// stop() only swap stream pointers, so unlike captureStdout() they allocate nothing.
class StreamCatcher {
 public:
  explicit StreamCatcher(std::FILE *&stream);
  ~StreamCatcher();
  StreamCatcher(const StreamCatcher &) = delete;
  StreamCatcher &operator=(const StreamCatcher &) = delete;
  void start();
  // Puts the stream back; returns (and forgets) what was caught.
  std::string stop();

 private:
  std::FILE *&stream_;
  std::FILE *catch_;
  std::FILE *saved_ = nullptr;
};

}  // namespace fskit::test
