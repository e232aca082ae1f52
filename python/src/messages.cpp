// SPDX-License-Identifier: MIT
// The capturing message function: one list per thread, so that calls on
// several Python threads at once each see only their own messages.
#include "python/src/messages.h"

#include <pybind11/pybind11.h>

#include <fskit/frame.h>

namespace py = pybind11;

namespace fskit::python {
namespace {

thread_local std::vector<LibraryMessage> pendingMessages;

int32_t keepMessages(const char *routine, int32_t *count, int32_t *, int32_t *, int32_t *lengths,
                     char **texts) {
  if (count == nullptr || texts == nullptr) return 0;
  for (int32_t i = 0; i < *count; ++i) {
    const char *text = texts[i] != nullptr ? texts[i] : "";
    std::string line = lengths != nullptr ? std::string(text, size_t(lengths[i])) : text;
    pendingMessages.push_back({routine != nullptr ? routine : "", std::move(line)});
  }
  return 0;
}

}  // namespace

void captureLibraryMessages() {
  fsRegisterMessage(keepMessages);
  fsRegisterMsgLog(nullptr);
}

std::vector<LibraryMessage> takeLibraryMessages() {
  std::vector<LibraryMessage> taken;
  taken.swap(pendingMessages);
  return taken;
}

void addLibraryMessage(std::string routine, std::string text) {
  pendingMessages.push_back({std::move(routine), std::move(text)});
}

std::string forwardLibraryMessages(int level) {
  std::vector<LibraryMessage> messages = takeLibraryMessages();
  if (messages.empty()) return "";
  py::object logger = py::module_::import("logging").attr("getLogger")("fskit");
  std::string joined;
  for (const LibraryMessage &message : messages) {
    std::string line = message.routine.empty() ? message.text : message.routine + ": " + message.text;
    logger.attr("log")(level, "%s", line);
    if (!joined.empty()) joined += "; ";
    joined += line;
  }
  return joined;
}

}  // namespace fskit::python
