// SPDX-License-Identifier: MIT
// fsMessage, fsMessages, the default message function and the registration
// of message and stop functions.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "frame/message_state.h"
#include "platform/platform.h"

using fskit::frame::messageState;

namespace {

// The character that ends a message of the given layout code.
char terminatorFor(int32_t code) {
  switch (code) {
    case 3: return '\r';
    case 5: return ' ';
    default: return '\n';
  }
}

// Hands the messages to the message function, then to the log function while
// logging is on; the result is that of the last function called, else 1.
int32_t dispatch(const char *routine, int32_t *count, int32_t *codes,
                 int32_t *auxCodes, int32_t *lengths, char **texts) {
  auto &state = messageState();
  int32_t result = 1;
  if (FsMsgFunction message = state.message.load(std::memory_order_acquire))
    result = message(routine, count, codes, auxCodes, lengths, texts);
  FsMsgFunction log = state.log.load(std::memory_order_acquire);
  if (log != nullptr && state.logging.load(std::memory_order_acquire))
    result = log(routine, count, codes, auxCodes, lengths, texts);
  return result;
}

}  // namespace

namespace fskit::frame {

void writeMessages(std::FILE *out, const char *routine, int32_t count,
                   const int32_t *codes, char *const *texts) {
  if (codes == nullptr || texts == nullptr) return;
  if (routine == nullptr) routine = "";
  platform::StreamLock lock(out);
  for (int32_t i = 0; i < count; ++i) {
    const char *text = texts[i] != nullptr ? texts[i] : "";
    char end = terminatorFor(codes[i]);
    if (codes[i] == 0)
      std::fprintf(out, "%s%c", text, end);
    else
      std::fprintf(out, "%s: %s%c", routine, text, end);
  }
}

}  // namespace fskit::frame

extern "C" {

// Declared with FSKIT_API in the header, which gives the definition its visibility.
const char FsmOutOfMemory[] = "Out of Memory";

FSKIT_API void fsMessage(const char *routine, int32_t code, int32_t auxCode,
                         const char *format, ...) {
  char buffer[1024];
  va_list args;
  int produced = 0;
  buffer[0] = '\0';
  if (format != nullptr) {  // a null format is the empty text
    va_start(args, format);
    produced = std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
  }
  if (produced < 0) {
    produced = 0;
    buffer[0] = '\0';
  }
  int32_t length = produced < int(sizeof buffer) ? produced : int(sizeof buffer) - 1;
  int32_t count = 1;
  char *text = buffer;
  dispatch(routine, &count, &code, &auxCode, &length, &text);
}

FSKIT_API int32_t fsMessages(const char *routine, int32_t *count, int32_t *codes,
                             int32_t *auxCodes, char **texts) {
  if (count == nullptr) return 1;
  // A count of 0 or less still reaches the functions; they get a valid array.
  int32_t none = 0;
  int32_t *lengths = &none;
  if (*count > 0) {
    // The functions are only ever handed arrays that hold what the count says.
    if (codes == nullptr || auxCodes == nullptr || texts == nullptr) return 1;
    lengths = static_cast<int32_t *>(std::malloc(sizeof(int32_t) * size_t(*count)));
    if (lengths == nullptr) return 1;
    for (int32_t i = 0; i < *count; ++i)
      lengths[i] = texts[i] != nullptr ? int32_t(std::strlen(texts[i])) : 0;
  }
  int32_t result = dispatch(routine, count, codes, auxCodes, lengths, texts);
  if (lengths != &none) std::free(lengths);
  return result;
}

FSKIT_API int32_t fsDefaultMessageFunction(const char *routine, int32_t *count,
                                           int32_t *codes, int32_t *,
                                           int32_t *, char **texts) {
  if (count == nullptr || *count < 1) return 0;
  fskit::frame::writeMessages(stdout, routine, *count, codes, texts);
  return 0;
}

FSKIT_API void fsRegisterMessage(FsMsgFunction fn) {
  messageState().message.store(fn, std::memory_order_release);
}

FSKIT_API FsMsgFunction fsMsgFunctionIs(void) {
  return messageState().message.load(std::memory_order_acquire);
}

FSKIT_API void fsDefaultMessage(void) { fsRegisterMessage(fsDefaultMessageFunction); }

FSKIT_API void fsRegisterStopFunction(FsStopFunction fn) {
  messageState().stop.store(fn, std::memory_order_release);
}

FSKIT_API int32_t fsCheckStop(void) {
  FsStopFunction stop = messageState().stop.load(std::memory_order_acquire);
  if (stop == nullptr) return 0;
  return int32_t(uint8_t(stop()));
}

}  // extern "C"
