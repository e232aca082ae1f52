// SPDX-License-Identifier: MIT
#include "tests/support/alloc_fault.h"

#include <unistd.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void *__real_realloc(void *block, size_t size);
char *__real_strdup(const char *text);
}

namespace {

struct Injector {
  long failFrom = 0, failTo = 0;  // the first and last allocation to fail; 0: disarmed
  long counted = 0;
  bool refused = false;
};
constinit Injector injector;
constinit size_t largestAllowed = 0;  // 0: any size

// Counts one allocation; true when it is to fail.
bool refuseThisOne(size_t size = 0) {
  if (largestAllowed != 0 && size > largestAllowed) return true;
  if (injector.failFrom <= 0) return false;
  ++injector.counted;
  if (injector.counted < injector.failFrom || injector.counted > injector.failTo) return false;
  injector.refused = true;
  return true;
}

}  // namespace

extern "C" {

void *__wrap_malloc(size_t size) { return refuseThisOne(size) ? nullptr : __real_malloc(size); }

void *__wrap_calloc(size_t count, size_t size) {
  return refuseThisOne(size != 0 && count > SIZE_MAX / size ? SIZE_MAX : count * size)
             ? nullptr
             : __real_calloc(count, size);
}

void *__wrap_realloc(void *block, size_t size) {
  return refuseThisOne(size) ? nullptr : __real_realloc(block, size);
}

// strdup allocates inside the C library, out of reach of the malloc wrapper.
char *__wrap_strdup(const char *text) { return refuseThisOne() ? nullptr : __real_strdup(text); }

}  // extern "C"

// The program's own operator new and delete: C++ allocations meet the same counter as C ones.
namespace {
void *allocate(size_t size) { return std::malloc(size != 0 ? size : 1); }
void *allocateOrThrow(size_t size) {
  void *block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
}  // namespace

void *operator new(size_t size) { return allocateOrThrow(size); }
void *operator new[](size_t size) { return allocateOrThrow(size); }
void *operator new(size_t size, const std::nothrow_t &) noexcept { return allocate(size); }
void *operator new[](size_t size, const std::nothrow_t &) noexcept { return allocate(size); }
void operator delete(void *block) noexcept { std::free(block); }
void operator delete[](void *block) noexcept { std::free(block); }
void operator delete(void *block, size_t) noexcept { std::free(block); }
void operator delete[](void *block, size_t) noexcept { std::free(block); }
void operator delete(void *block, const std::nothrow_t &) noexcept { std::free(block); }
void operator delete[](void *block, const std::nothrow_t &) noexcept { std::free(block); }

namespace fskit::test {

void failAllocationFrom(long k) { injector = Injector{k, LONG_MAX, 0, false}; }
void failOnlyAllocation(long k) { injector = Injector{k, k, 0, false}; }
void refuseAllocationsAbove(size_t bytes) { largestAllowed = bytes; }

using Check = std::function<void(long k, bool refused)>;

static long forEachFailure(void (*arm)(long), const std::function<void()> &call,
                           const Check &check) {
  for (long k = 1;; ++k) {
    arm(k);
    call();
    bool refused = injector.refused;
    failAllocationFrom(0);
    check(k, refused);
    if (!refused) return k;
  }
}

long forEachAllocationFailure(const std::function<void()> &call, const Check &check) {
  return forEachFailure(failAllocationFrom, call, check);
}
long forEachSingleAllocationFailure(const std::function<void()> &call, const Check &check) {
  return forEachFailure(failOnlyAllocation, call, check);
}

StreamCatcher::StreamCatcher(std::FILE *&stream) : stream_(stream), catch_(std::tmpfile()) {}

StreamCatcher::~StreamCatcher() {
  if (saved_ != nullptr) stop();
  if (catch_ != nullptr) std::fclose(catch_);
}

void StreamCatcher::start() {
  if (catch_ == nullptr || saved_ != nullptr) return;
  std::fflush(stream_);
  saved_ = stream_;
  stream_ = catch_;
}

std::string StreamCatcher::stop() {
  std::string caught;
  if (saved_ == nullptr) return caught;
  stream_ = saved_;
  saved_ = nullptr;
  std::fflush(catch_);
  std::rewind(catch_);
  for (int c; (c = std::getc(catch_)) != EOF;) caught += char(c);
  std::rewind(catch_);
  if (ftruncate(fileno(catch_), 0) != 0) caught += "<catch not emptied>";
  return caught;
}

}  // namespace fskit::test
