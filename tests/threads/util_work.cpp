// SPDX-License-Identifier: MIT
// Strings, number converters, the cipher, the command-line parser and tag tables, which keep no
// state; key codes read by all threads from one standard input.
#include <fskit/cmdline.h>
#include <fskit/numformat.h>
#include <fskit/strings.h>
#include <fskit/util.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "tests/support/test_support.h"
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
    std::snprintf(hex, sizeof hex, "%02x%02x%02x%02x=%a;", vax[0], vax[1], vax[2], vax[3],
                  double(back));
    out += hex;
  }
  return out;
}

const fskit::stress::Registration strings{{"strings", 4000, stringsRound}};
const fskit::stress::Registration numbers{{"numformat", 2000, numbersRound}};

std::string cipherRound(int worker, int round) {
  char text[96];
  std::snprintf(text, sizeof text, "worker %d, round %d: the quick brown fox", worker, round);
  char hex[16 * 12 + 1], back[8 * 12 + 1];
  desEncrypt(text, hex);
  int32_t result = desDecrypt(hex, back);
  return std::string(hex) + " " + std::to_string(result) + " " + back;
}

std::string commandLineRound(int worker, int round) {
  char line[160];
  std::snprintf(line, sizeof line, "copy in%d.dat,out%d.dat /count=%d /name=\"a \"\"b\"\"\" /quiet",
                worker, round, worker * round);
  KwaCmdLnParts parts{};
  int32_t result = kwaCmdLnPrts(line, &parts);
  std::string out = std::to_string(result);
  for (int32_t i = 0; i < parts.nArgs; ++i) out += std::string("|") + parts.args[i] + parts.argEnds[i];
  for (int32_t i = 0; i < parts.nQuals; ++i)
    out += std::string("|/") + parts.qualNames[i] + "=" +
           (parts.qualValues[i] != nullptr ? parts.qualValues[i] : "(none)");
  KwaTagEntry *table = nullptr;
  int32_t count = 0, capacity = 0;
  for (int k = 0; k < 5; ++k) {
    std::string tag = "tag" + std::to_string((worker + k * 7 + round) % 11);
    kwaAddToTbl(tag.c_str(), ("label " + tag).c_str(), &count, &capacity, &table);
  }
  char label[128] = "";
  out += "|" + std::to_string(kwaTagToLabel(count, table, "TAG3", label)) + label;
  std::free(table);
  return out;
}

const fskit::stress::Registration cipher{{"cipher", 3000, cipherRound}};
const fskit::stress::Registration commandLine{{"cmdline", 3000, commandLineRound}};

TEST(KeyCodeThreads, EveryCallReadsOneWholeKey) {
#if defined(_WIN32)
  GTEST_SKIP() << "piped input gives its bytes as they are on Windows; no two-code keys to split";
#endif
  // Each Up arrow is three bytes, two console codes: a call that got only one would not give 274.
  constexpr int kPerThread = 200;
  std::string input;
  for (int i = 0; i < fskit::stress::kThreads * kPerThread; ++i) input += "\x1b[A";
  fskit::test::StdinFrom keys(input);
  std::vector<int> wrong(fskit::stress::kThreads, 0);
  fskit::stress::onThreads(fskit::stress::kThreads, [&wrong](int i) {
    for (int k = 0; k < kPerThread; ++k)
      if (getKeyCode() != FS_KEY_UP) ++wrong[size_t(i)];
  });
  for (int count : wrong) EXPECT_EQ(count, 0);
  EXPECT_EQ(getKeyCode(), 4);  // all read: end of input
}

}  // namespace
