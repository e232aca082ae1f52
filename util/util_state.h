// Process-wide state of the util family: the extended-key table of
// getKeyCode() and the cipher's key schedule. Constant-initialised: nothing
// runs at load time, and both are filled on use.
#pragma once

#include <cstdint>

namespace fskit::util {

inline constexpr int kExtendedKeys = 255;

struct DesSchedule {
  uint64_t subkeys[16] = {};  // 48 bits each
  uint32_t c = 0, d = 0;      // the 28-bit key registers
};

struct UtilState {
  // Entry 0 is 1 once the table is filled.
  uint16_t extendedKeys[kExtendedKeys] = {};
  DesSchedule des;
};

UtilState &utilState();

}  // namespace fskit::util
