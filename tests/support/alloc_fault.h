// SPDX-License-Identifier: MIT
// Allocation-failure injection for the fault tests. A fault test program is
// linked with --wrap for malloc, calloc, realloc and strdup, and its operator
// new allocates with malloc, so every allocation that the library's objects
// make goes through a counter that can be told to fail the k-th call. Only
// the C library's names are wrapped: the library itself has no seam for it.
#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>

namespace fskit::test {

// From now on, fail the k-th allocation (1-based) and every one after it
// until disarmed; k <= 0 disarms.
void failAllocationFrom(long k);
// From now on, fail the k-th allocation only: a retry after it succeeds.
void failOnlyAllocation(long k);

// From now on, refuse every allocation of more than `bytes` (as a system
// short of memory does), armed or not; 0 lifts the limit.
void refuseAllocationsAbove(size_t bytes);

// For k = 1, 2, ... runs `call` with allocations failing from the k-th on,
// then (with allocation working again) `check(k, refused)`, until a run of
// `call` refuses nothing; returns the number of runs. Only `call` runs armed,
// so the checks may allocate freely.
long forEachAllocationFailure(const std::function<void()> &call,
                              const std::function<void(long k, bool refused)> &check);
// The same with only the k-th allocation failing in run k, for the paths
// that retry or fall back after a failure.
long forEachSingleAllocationFailure(const std::function<void()> &call,
                                    const std::function<void(long k, bool refused)> &check);

// Catches what the library prints through stdio on `stream` (stdout or
// stderr) while armed: start() and stop() only swap stream pointers, so
// unlike captureStdout() they allocate nothing that the injector would count.
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
