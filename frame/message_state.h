// Process-wide state of the message framework, shared by the message and the
// log functions. Constant-initialised: nothing runs at load time.
#pragma once

#include <cstdio>

#include <fskit/frame.h>

namespace fskit::frame {

struct MessageState {
  FsMsgFunction message = fsDefaultMessageFunction;
  FsMsgFunction log = fsDefaultMsgLogFunction;
  bool logging = false;
  std::FILE *logStream = nullptr;
  bool reportingLogFailure = false;  // the log file's failure is being reported
  FsStopFunction stop = nullptr;
};

// The log file lies in the current directory when it is first opened.
inline constexpr const char kLogFileName[] = "fsmessage.log";

MessageState &messageState();

// Writes messages in the layout the default message and log functions share.
// Null arrays write nothing; a null text or routine name writes as "".
void writeMessages(std::FILE *out, const char *routine, int32_t count,
                   const int32_t *codes, char *const *texts);

}  // namespace fskit::frame
