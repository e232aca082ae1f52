// A destination buffer pre-filled with a sentinel byte, so a test sees every
// byte a function wrote and every byte it left alone.
#pragma once

#include <cstring>
#include <string>

namespace fskit::test {

struct Sentinel {
  static constexpr char kFill = '~';
  char bytes[64];
  Sentinel() { std::memset(bytes, kFill, sizeof bytes); }
  explicit Sentinel(const char *initial) : Sentinel() { std::strcpy(bytes, initial); }
  operator char *() { return bytes; }
  // The first n bytes, NULs included.
  std::string first(size_t n) const { return std::string(bytes, n); }
  // The bytes up to the first sentinel byte: what was written, when the
  // function wrote a contiguous run from the start.
  std::string written() const {
    std::string all(bytes, sizeof bytes);
    return all.substr(0, all.find(kFill));
  }
};

}  // namespace fskit::test
