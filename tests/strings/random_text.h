// SPDX-License-Identifier: MIT
// Random texts over a small alphabet (common repeats, partial matches and quote pairs).
#pragma once

#include <random>
#include <string>

namespace fskit::test {

class RandomText {
 public:
  explicit RandomText(unsigned seed) : engine_(seed) {}
  std::string operator()(const std::string &alphabet, size_t maxLength) {
    std::uniform_int_distribution<size_t> length(0, maxLength), pick(0, alphabet.size() - 1);
    std::string s(length(engine_), ' ');
    for (char &c : s) c = alphabet[pick(engine_)];
    return s;
  }

 private:
  std::mt19937 engine_;
};

}  // namespace fskit::test
