// SPDX-License-Identifier: MIT
// The sort family's per-thread state: the sort context that the comparators
// read. Constant-initialised, so reaching it costs no guard.
#include "sort/sorting.h"

namespace fskit::sort {
namespace {
constinit thread_local SortContext context;
}  // namespace

SortContext &sortContext() { return context; }

}  // namespace fskit::sort
