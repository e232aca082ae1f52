// The default log function and the log registration.
#include <cstdio>

#include "frame/message_state.h"

using fskit::frame::messageState;

extern "C" {

FSKIT_API int32_t fsDefaultMsgLogFunction(const char *routine, int32_t *count,
                                          int32_t *codes, int32_t *,
                                          int32_t *, char **texts) {
  auto &state = messageState();
  if (state.logStream == nullptr) {
    // Registered as the message function too, this function is handed its
    // own report: the file cannot take it, and trying again would never end.
    if (state.reportingLogFailure) return 0;
    state.logStream = std::fopen(fskit::frame::kLogFileName, "w");
    if (state.logStream == nullptr) {
      // Logging goes off first, so this report reaches the screen only.
      state.logging = false;
      state.reportingLogFailure = true;
      fsMessage("fsDefaultMsgLogFunction", 1, 1, "Unable to open logfile %s",
                fskit::frame::kLogFileName);
      state.reportingLogFailure = false;
      return 0;
    }
  }
  if (count == nullptr || *count < 1) return 0;
  fskit::frame::writeMessages(state.logStream, routine, *count, codes, texts);
  return 0;
}

FSKIT_API void fsDefaultMsgLogFlush(void) {
  if (messageState().logStream != nullptr) std::fflush(messageState().logStream);
}

FSKIT_API void fsRegisterMsgLog(FsMsgFunction fn) {
  auto &state = messageState();
  if (state.logStream != nullptr) {
    std::fclose(state.logStream);
    state.logStream = nullptr;
  }
  if (fn != nullptr) {
    state.log = fn;
    state.logging = true;
  } else {
    state.logging = false;
  }
}

}  // extern "C"
