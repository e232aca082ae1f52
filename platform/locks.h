// SPDX-License-Identifier: MIT
// Locks that process-wide state can hold from the moment the library is
// loaded: constant-initialised on every platform, so no constructor has to
// run before the first call, nor a destructor after the last. They meet the
// standard's Lockable and SharedLockable requirements (std::lock_guard,
// std::unique_lock, std::shared_lock). On POSIX they are the standard
// library's own; the Windows runtime's std::mutex cannot be constant-
// initialised, so there they are slim reader/writer locks.
#pragma once

#if defined(_WIN32)

namespace fskit::platform {

class SharedMutex {
 public:
  constexpr SharedMutex() = default;
  SharedMutex(const SharedMutex &) = delete;
  SharedMutex &operator=(const SharedMutex &) = delete;
  void lock();
  bool try_lock();
  void unlock();
  void lock_shared();
  bool try_lock_shared();
  void unlock_shared();

 private:
  void *state_ = nullptr;  // an SRWLOCK, whose initial value is all zero
};

// Exclusive use only; the same lock underneath.
using Mutex = SharedMutex;

}  // namespace fskit::platform

#else

#include <mutex>
#include <shared_mutex>

namespace fskit::platform {
using SharedMutex = std::shared_mutex;
using Mutex = std::mutex;
}  // namespace fskit::platform

#endif
