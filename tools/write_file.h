// SPDX-License-Identifier: MIT
// Writing a whole file for the tool's commands (the picture of
// `fskit pattern --svg`, for one).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fskit::tool {

// Writes `bytes` as they are to `path` the way the library writes INI files:
// a regular file is replaced only by a complete new file (written beside it,
// then renamed over it), so a failure half-way leaves it as it was; other
// targets (a device, a read-only or hard-linked file) are written in place.
// Nothing when written, else "cannot write PATH: <the system's reason>".
std::optional<std::string> writeWholeFile(const std::string &path, std::string_view bytes);

}  // namespace fskit::tool
