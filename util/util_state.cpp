// SPDX-License-Identifier: MIT
#include "util/util_state.h"

namespace fskit::util {
namespace {
constinit UtilState state;
}

UtilState &utilState() { return state; }

}  // namespace fskit::util
