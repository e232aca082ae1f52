// SPDX-License-Identifier: MIT
// The private directory for the work files of a file sort.
#include <cerrno>
#include <cstdlib>

#include "platform/platform.h"
#include "sort/file_sort_internal.h"

namespace fskit::sort {

WorkDirectory::WorkDirectory(const char *parent)
    : path_(platform::makePrivateDirectory(parent)), error_(errno) {}

WorkDirectory::~WorkDirectory() {
  if (path_ != nullptr) platform::_rmdirS(path_);
  std::free(path_);
}

}  // namespace fskit::sort
