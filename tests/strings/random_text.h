// SPDX-License-Identifier: MIT
// Random texts over a small alphabet (common repeats, partial matches and quote pairs).
#pragma once

#include <random>
#include <string>

namespace fskit::test {

struct RandomText {
  std::mt19937 engine;
  std::string operator()(const std::string &alphabet, size_t maxLength) {
    std::uniform_int_distribution<size_t> length(0, maxLength), pick(0, alphabet.size() - 1);
    std::string s(length(engine), ' ');
    for (char &c : s) c = alphabet[pick(engine)];
    return s;
  }
};

}  // namespace fskit::test
