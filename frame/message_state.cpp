// SPDX-License-Identifier: MIT
#include "frame/message_state.h"

namespace fskit::frame {
namespace {
constinit MessageState state;
}

MessageState &messageState() { return state; }

}  // namespace fskit::frame
