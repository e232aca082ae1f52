// SPDX-License-Identifier: MIT
// The temporary file of a file replacement (both sides of replace_file):
// beside its target, so that the rename stays within one directory.
#pragma once

#include <cstddef>

namespace fskit::platform {

// Names tried before giving up on finding one nobody uses.
inline constexpr int kNameAttempts = 100;

// A malloc'ed copy of `text`, or null.
char *copyOf(const char *text);

// A malloc'ed "<directory>.<base>.<process>-<n>.tmp", n counting up from
// call to call, where the target's first `directoryLength` bytes are its
// directory part, separator included. Null without memory.
char *temporaryNameBeside(const char *target, size_t directoryLength, long process);

}  // namespace fskit::platform
