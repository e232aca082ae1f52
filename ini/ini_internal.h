// SPDX-License-Identifier: MIT
// The INI family's interface to the families above it (not installed, not
// exported): the number of the first handle, and values of any length.
#pragma once

#include <cstdint>

namespace fskit::ini {

// The handles are kFirstHandle and the numbers after it, one for each slot.
inline constexpr int32_t kFirstHandle = 1000;

// A malloc'ed copy of the value of `topic` in the first paragraph named
// `paragraph` of the handle's document (free it with free), or null for a
// bad handle, a missing value or no memory. Prints nothing. Safe from any
// thread: the document is held for reading meanwhile.
char *copyValueOf(int32_t handle, const char *paragraph, const char *topic);

}  // namespace fskit::ini
