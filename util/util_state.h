// SPDX-License-Identifier: MIT
// Process-wide state of the util family: the extended-key table of
// getKeyCode(). Constant-initialised: nothing runs at load time; the table is
// filled once, by the first call, whichever thread makes it.
#pragma once

#include <cstdint>
#include <mutex>

#include "platform/locks.h"

namespace fskit::util {

inline constexpr int kExtendedKeys = 255;

struct UtilState {
  // Entry 0 is 1 once the table is filled.
  uint16_t extendedKeys[kExtendedKeys] = {};
  std::once_flag extendedKeysFilled;
  // Standard input is one for the process: a key is read whole by one call,
  // and calls from several threads take turns.
  platform::Mutex keyboard;
};

UtilState &utilState();

}  // namespace fskit::util
