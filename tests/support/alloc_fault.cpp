#include "tests/support/alloc_fault.h"

#include <cstddef>
#include <new>

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void *__real_realloc(void *block, size_t size);
void *__real__Znwm(size_t size);
void *__real__Znam(size_t size);
void *__real__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t &);
void *__real__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t &);
}

namespace {

struct Injector {
  long failFrom = 0;
  long counted = 0;
  bool refused = false;
};
constinit Injector injector;

// Counts one allocation; true when it is to fail.
bool refuseThisOne() {
  if (injector.failFrom <= 0) return false;
  if (++injector.counted < injector.failFrom) return false;
  injector.refused = true;
  return true;
}

}  // namespace

extern "C" {

void *__wrap_malloc(size_t size) { return refuseThisOne() ? nullptr : __real_malloc(size); }

void *__wrap_calloc(size_t count, size_t size) {
  return refuseThisOne() ? nullptr : __real_calloc(count, size);
}

void *__wrap_realloc(void *block, size_t size) {
  return refuseThisOne() ? nullptr : __real_realloc(block, size);
}

void *__wrap__Znwm(size_t size) {
  if (refuseThisOne()) throw std::bad_alloc();
  return __real__Znwm(size);
}

void *__wrap__Znam(size_t size) {
  if (refuseThisOne()) throw std::bad_alloc();
  return __real__Znam(size);
}

void *__wrap__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t &tag) {
  return refuseThisOne() ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}

void *__wrap__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t &tag) {
  return refuseThisOne() ? nullptr : __real__ZnamRKSt9nothrow_t(size, tag);
}

}  // extern "C"

namespace fskit::test {

void failAllocationFrom(long k) { injector = Injector{k, 0, false}; }

long allocationsCounted() { return injector.counted; }

bool allocationRefused() { return injector.refused; }

long forEachAllocationFailure(const std::function<void()> &call,
                              const std::function<void(long k, bool refused)> &check) {
  for (long k = 1;; ++k) {
    failAllocationFrom(k);
    call();
    bool refused = allocationRefused();
    failAllocationFrom(0);
    check(k, refused);
    if (!refused) return k;
  }
}

}  // namespace fskit::test
