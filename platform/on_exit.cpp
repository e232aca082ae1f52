// SPDX-License-Identifier: MIT
// Functions registered to run when the library goes away. They run from the
// shared library's destructor, which runs both at dlclose() and at process
// exit, before the C runtime closes the standard streams.
#include <mutex>

#include "platform/locks.h"
#include "platform/platform.h"

namespace fskit::platform {
namespace {

constexpr int kMaxOnExit = 32;

struct OnExitTable {
  OnExitFunction functions[kMaxOnExit] = {};
  int count = 0;
};
constinit OnExitTable table;
// Registrations may come from several threads at once.
constinit Mutex tableLock;

__attribute__((destructor)) void runOnExitFunctions() {
  for (;;) {
    OnExitFunction fn;
    {
      std::lock_guard<Mutex> lock(tableLock);
      if (table.count == 0) return;
      fn = table.functions[--table.count];
    }
    fn();
  }
}

}  // namespace

OnExitFunction _onexit(OnExitFunction fn) {
  if (fn == nullptr) return nullptr;
  std::lock_guard<Mutex> lock(tableLock);
  // A function registered again (a clean-up registered on every run) runs once.
  for (int i = 0; i < table.count; ++i)
    if (table.functions[i] == fn) return fn;
  if (table.count == kMaxOnExit) return nullptr;
  table.functions[table.count++] = fn;
  return fn;
}

}  // namespace fskit::platform
