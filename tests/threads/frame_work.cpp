// SPDX-License-Identifier: MIT
// Messages from many threads: the registered functions, the log file, and whole messages.
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <sstream>
#include <string>

#include "tests/support/test_support.h"
#include "tests/threads/stress.h"

namespace {

// Three texts in one message, so that a message split by another thread's output shows up as
// lines out of order.
int32_t sendThreeParts(int worker, int round) {
  char texts[3][64];
  char *pointers[3];
  for (int part = 0; part < 3; ++part) {
    std::snprintf(texts[part], sizeof texts[part], "w%d m%d part%d", worker, round, part);
    pointers[part] = texts[part];
  }
  int32_t count = 3, codes[3] = {1, 1, 1}, aux[3] = {0, 0, 0};
  return fsMessages("stress", &count, codes, aux, pointers);
}

// Worker 0 switches the log file on and off while the others write to it.
std::string messagesRound(int worker, int round) {
  if (worker == 0 && round % 10 == 0)
    fsRegisterMsgLog(round % 20 == 0 ? fsDefaultMsgLogFunction : nullptr);
  fsMessage("stress", 0, 0, "worker %d round %d", worker, round);
  int32_t result = sendThreeParts(worker, round);
  fsDefaultMsgLogFlush();
  bool defaultFunction = fsMsgFunctionIs() == fsDefaultMessageFunction;
  return std::to_string(result) + " " + std::to_string(defaultFunction) + " " +
         std::to_string(fsCheckStop());
}

const fskit::stress::Registration messages{{"messages", 1000, messagesRound}};

// Every message has its three parts on consecutive lines, and each of `count` is there once.
void expectWholeMessages(const std::string &output, size_t count) {
  std::istringstream in(output);
  std::set<std::string> seen;
  for (std::string first; std::getline(in, first);) {
    int worker = -1, round = -1;
    ASSERT_EQ(std::sscanf(first.c_str(), "stress: w%d m%d part0", &worker, &round), 2) << first;
    std::string prefix = "stress: w" + std::to_string(worker) + " m" + std::to_string(round);
    for (const char *part : {" part1", " part2"}) {
      std::string line;
      std::getline(in, line);
      EXPECT_EQ(line, prefix + part);
    }
    EXPECT_TRUE(seen.insert(first).second) << first;
  }
  EXPECT_EQ(seen.size(), count);
}

TEST(MessageThreads, MessagesArriveWholeOnTheScreenAndInTheLog) {
  fskit::test::TempDir dir;
  fskit::test::ChangeDir here(dir.path());
  constexpr int kPerThread = 1000;
  fsRegisterMsgLog(fsDefaultMsgLogFunction);
  std::string screen = fskit::test::captureStdout([] {
    fskit::stress::onThreads(fskit::stress::kThreads, [](int worker) {
      for (int round = 0; round < kPerThread; ++round) sendThreeParts(worker, round);
    });
  });
  fsRegisterMsgLog(nullptr);  // closes the log file
  expectWholeMessages(screen, fskit::stress::kThreads * kPerThread);
  expectWholeMessages(fskit::test::readText(dir.file("fsmessage.log")),
                      fskit::stress::kThreads * kPerThread);
}

}  // namespace
