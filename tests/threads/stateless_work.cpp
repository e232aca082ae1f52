// SPDX-License-Identifier: MIT
// Workloads of the families that keep no state: strings and number converters.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include <fskit/numformat.h>
#include <fskit/strings.h>

#include "tests/threads/stress.h"

namespace {

std::string stringsRound(int worker, int round) {
  char text[128];
  std::snprintf(text, sizeof text, "  Worker %d  round %d  \"quoted  part\"  ", worker, round);
  std::string out;
  char work[128];
  std::strcpy(work, text);
  out += std::to_string(strqcollapse(work)) + ":" + work + "|";
  char upper[128];
  out += strcpyu(upper, text);
  out += "|" + std::to_string(stridx("round", text));
  out += "|" + std::to_string(strwildcmp("*round ?*", text, '?', '*'));
  out += "|" + std::to_string(stringHash(text, 1021));
  return out;
}

std::string numbersRound(int worker, int round) {
  std::string out;
  char hex[32];
  for (int k = 0; k < 64; ++k) {
    float value = float(worker * 1000 + round * 64 + k) * 0.37f - 50.0f;
    uint8_t vax[4];
    float back = 0;
    encodeVaxFloat(&value, vax);
    decodeVaxFloat(vax, &back);
    std::snprintf(hex, sizeof hex, "%02x%02x%02x%02x=%a;", vax[0], vax[1], vax[2], vax[3], double(back));
    out += hex;
  }
  return out;
}

const fskit::stress::Registration strings{{"strings", 4000, stringsRound}};
const fskit::stress::Registration numbers{{"numformat", 2000, numbersRound}};

}  // namespace
