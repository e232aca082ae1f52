// Bytes written as hexadecimal pairs in memory order, e.g. "80 40 00 00".
#pragma once

#include <string>
#include <vector>

namespace fskit::test {

inline std::vector<unsigned char> hexBytes(const std::string &text) {
  std::vector<unsigned char> bytes;
  for (size_t at = 0; at + 1 < text.size(); at += 3)
    bytes.push_back(static_cast<unsigned char>(std::stoul(text.substr(at, 2), nullptr, 16)));
  return bytes;
}

}  // namespace fskit::test
