// SPDX-License-Identifier: MIT
#include "platform/platform.h"

namespace fskit::platform {

int _stat(const char *path, struct stat *status) { return ::stat(path, status); }

}  // namespace fskit::platform
