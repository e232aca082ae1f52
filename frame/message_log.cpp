// SPDX-License-Identifier: MIT
// The default log function and the log registration.
#include <cstdio>
#include <mutex>

#include "frame/message_state.h"

using fskit::frame::messageState;

namespace {
// Set while this thread reports that the log file cannot be opened: the
// report may come back here when this function is the message function too.
thread_local bool reportingLogFailure = false;
}  // namespace

extern "C" {

FSKIT_API int32_t fsDefaultMsgLogFunction(const char *routine, int32_t *count,
                                          int32_t *codes, int32_t *,
                                          int32_t *, char **texts) {
  // Registered as the message function too, this function is handed its
  // own report: the file cannot take it, and trying again would never end.
  if (reportingLogFailure) return 0;
  auto &state = messageState();
  {
    std::lock_guard<fskit::platform::Mutex> lock(state.logLock);
    if (state.logStream == nullptr)
      state.logStream = std::fopen(fskit::frame::kLogFileName, "w");
    if (state.logStream != nullptr) {
      if (count == nullptr || *count < 1) return 0;
      fskit::frame::writeMessages(state.logStream, routine, *count, codes, texts);
      return 0;
    }
    // Logging goes off first, so the report reaches the screen only.
    state.logging.store(false, std::memory_order_release);
  }
  // Reported outside the lock: the message function may log elsewhere.
  reportingLogFailure = true;
  fsMessage("fsDefaultMsgLogFunction", 1, 1, "Unable to open logfile %s",
            fskit::frame::kLogFileName);
  reportingLogFailure = false;
  return 0;
}

FSKIT_API void fsDefaultMsgLogFlush(void) {
  auto &state = messageState();
  std::lock_guard<fskit::platform::Mutex> lock(state.logLock);
  if (state.logStream != nullptr) std::fflush(state.logStream);
}

FSKIT_API void fsRegisterMsgLog(FsMsgFunction fn) {
  auto &state = messageState();
  std::lock_guard<fskit::platform::Mutex> lock(state.logLock);
  if (state.logStream != nullptr) {
    std::fclose(state.logStream);
    state.logStream = nullptr;
  }
  if (fn != nullptr) state.log.store(fn, std::memory_order_release);
  state.logging.store(fn != nullptr, std::memory_order_release);
}

}  // extern "C"
