// SPDX-License-Identifier: MIT
// A destination pre-filled with a sentinel byte, so that a test sees every
// byte a function wrote and that it wrote nothing beyond.
#pragma once

#include <cstring>
#include <string>

namespace fskit::test {

struct Sentinel {
  char bytes[64];
  Sentinel() { std::memset(bytes, '~', sizeof bytes); }
  // The bytes before the first sentinel byte, NULs included.
  std::string written() const {
    const std::string all(bytes, sizeof bytes);
    return all.substr(0, all.find('~'));
  }
};

}  // namespace fskit::test
