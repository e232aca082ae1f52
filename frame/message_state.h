// SPDX-License-Identifier: MIT
// Process-wide state of the message framework, shared by the message and the
// log functions. Constant-initialised: nothing runs at load time. The
// registered functions and the logging flag are atomic, so a thread reads
// each whole; the log file is used under `logLock` only.
#pragma once

#include <atomic>
#include <cstdio>
#include <mutex>

#include <fskit/frame.h>

#include "platform/locks.h"

namespace fskit::frame {

struct MessageState {
  std::atomic<FsMsgFunction> message{fsDefaultMessageFunction};
  std::atomic<FsMsgFunction> log{fsDefaultMsgLogFunction};
  std::atomic<bool> logging{false};
  std::atomic<FsStopFunction> stop{nullptr};
  platform::Mutex logLock;          // guards logStream
  std::FILE *logStream = nullptr;
};

// The log file lies in the current directory when it is first opened.
inline constexpr const char kLogFileName[] = "fsmessage.log";

MessageState &messageState();

// Writes messages in the layout the default message and log functions share,
// all of them under the stream's lock, so that they arrive whole.
// Null arrays write nothing; a null text or routine name writes as "".
void writeMessages(std::FILE *out, const char *routine, int32_t count,
                   const int32_t *codes, char *const *texts);

}  // namespace fskit::frame
