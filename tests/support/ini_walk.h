// SPDX-License-Identifier: MIT
// The INI walk as text, for the tests that call the INI functions.
#pragma once

#include <fskit/ini.h>

#include <string>

namespace fskit::test {

// "paragraph|topic|value" + `end` for every value fsIniNext delivers on
// `handle`, from the start or (fromStart false) from where the walk stands.
inline std::string iniWalk(int32_t handle, const char *end = "\n", bool fromStart = true) {
  std::string all;
  char paragraph[1100], topic[1100], value[1100];
  for (int32_t first = fromStart; fsIniNext(first, handle, paragraph, topic, value) == 1; first = 0)
    all += std::string(paragraph) + "|" + topic + "|" + value + end;
  return all;
}

}  // namespace fskit::test
