// SPDX-License-Identifier: MIT
// The message framework: default layouts, the log file, registered functions and their arguments.
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/test_support.h"

using namespace fskit::test;

namespace {

struct Recorded {
  std::string routine;
  int32_t count = -1;
  std::vector<int32_t> codes, auxCodes, lengths;
  std::vector<std::string> texts;
  bool operator==(const Recorded &) const = default;
};

std::vector<Recorded> messageCalls, logCalls;
int32_t messageResult = 0, logResult = 0;

// A message or log function that keeps its arguments in `calls`.
template <std::vector<Recorded> &calls, int32_t &result>
int32_t recordInto(const char *routine, int32_t *count, int32_t *codes, int32_t *auxCodes,
                   int32_t *lengths, char **texts) {
  const int32_t n = *count;
  Recorded &r = calls.emplace_back(Recorded{routine, n, {codes, codes + n},
                                            {auxCodes, auxCodes + n}, {lengths, lengths + n}, {}});
  for (int32_t i = 0; i < n; ++i) r.texts.emplace_back(texts[i] != nullptr ? texts[i] : "<null>");
  return result;
}

constexpr FsMsgFunction recordMessage = recordInto<messageCalls, messageResult>;
constexpr FsMsgFunction recordLog = recordInto<logCalls, logResult>;

// Each test runs in a directory of its own and leaves the defaults registered.
class Message : public ::testing::Test {
 protected:
  ~Message() override {
    messageCalls.clear();
    logCalls.clear();
    messageResult = logResult = 0;
    fsDefaultMessage();
    fsRegisterMsgLog(nullptr);
    fsRegisterStopFunction(nullptr);
  }
  TempDir dir;
  ChangeDir here{dir.path()};
};

}  // namespace

TEST_F(Message, DefaultLayoutsOnStandardOutputUntilSwitchedOff) {
  for (auto [code, expected] : {std::pair{1, "r: text\n"}, {0, "text\n"}, {3, "r: text\r"},
                                {5, "r: text "}, {-7, "r: text\n"}, {4, "r: text\n"}})
    EXPECT_EQ(captureStdout([code = code] { fsMessage("r", code, 0, "text"); }), expected) << code;
  EXPECT_EQ(captureStdout([] { fsMessage("r", 1, 0, "%d-%s-%c", 42, "x", 'y'); }),
            "r: 42-x-y\n");
  // Without fsRegisterMsgLog nothing is logged.
  EXPECT_FALSE(fileExists("fsmessage.log"));
  EXPECT_EQ(fsMsgFunctionIs(), &fsDefaultMessageFunction);
  fsRegisterMessage(nullptr);
  EXPECT_EQ(captureStdout([] { fsMessage("r", 1, 0, "silent"); }), "");
  fsDefaultMessage();
  EXPECT_EQ(captureStdout([] { fsMessage("r", 1, 0, "back"); }), "r: back\n");
}

TEST_F(Message, RegisteredFunctionsReceiveAllSixArgumentsAndCutTexts) {
  fsRegisterMessage(recordMessage);
  fsRegisterMsgLog(recordLog);
  fsMessage("fsLoadElemTable", 1, 17, "Bad line %d", 12);
  const Recorded expected{"fsLoadElemTable", 1, {1}, {17}, {11}, {"Bad line 12"}};
  EXPECT_EQ(messageCalls, std::vector{expected});
  EXPECT_EQ(logCalls, std::vector{expected});
  fsRegisterMsgLog(nullptr);
  // An overlong text is cut at 1023 bytes; a null format (through a pointer) is the empty text.
  fsMessage("r", 0, 0, "%s", std::string(3000, 'a').c_str());
  void (*const send)(const char *, int32_t, int32_t, const char *, ...) = fsMessage;
  send("r", 1, 0, nullptr, 42, "ignored");
  const Recorded cut{"r", 1, {0}, {0}, {1023}, {std::string(1023, 'a')}};
  EXPECT_EQ(messageCalls, (std::vector<Recorded>{expected, cut, {"r", 1, {1}, {0}, {0}, {""}}}));
}

TEST_F(Message, LogFileMirrorsScreenAndStartsAfreshOnEachRegistration) {
  writeFile("fsmessage.log", "left over from an earlier run\n");
  fsRegisterMsgLog(fsDefaultMsgLogFunction);
  std::string screen = captureStdout([] {
    fsMessage("fsTblParseMF", 1, 0, "first");
    fsMessage("fsTblParseMF", 0, 0, "plain");
    fsMessage("fsTblParseMF", 3, 0, "progress");
  });
  fsDefaultMsgLogFlush();
  EXPECT_EQ(screen, "fsTblParseMF: first\nplain\nfsTblParseMF: progress\r");
  EXPECT_EQ(readText("fsmessage.log"), screen);

  // Switching logging off closes the file; later messages are not logged.
  fsRegisterMsgLog(nullptr);
  captureStdout([] { fsMessage("r", 1, 0, "not logged"); });
  EXPECT_EQ(readText("fsmessage.log"), screen);

  // Registering the default log function again truncates at its next message.
  fsRegisterMsgLog(fsDefaultMsgLogFunction);
  EXPECT_EQ(readText("fsmessage.log"), screen);
  captureStdout([] { fsMessage("r", 1, 0, "fresh"); });
  fsDefaultMsgLogFlush();
  EXPECT_EQ(readText("fsmessage.log"), "r: fresh\n");
}

TEST_F(Message, UnopenableLogFileSwitchesLoggingOffAndReportsOnScreenOnly) {
  ASSERT_TRUE(std::filesystem::create_directory("fsmessage.log"));  // fopen(..., "w") fails on it
  fsRegisterMsgLog(fsDefaultMsgLogFunction);
  const std::string report = "Unable to open logfile fsmessage.log";
  EXPECT_EQ(captureStdout([] { fsMessage("r", 1, 0, "hello"); }),
            "r: hello\nfsDefaultMsgLogFunction: " + report + "\n");

  // The report carries code 1 and auxCode 1; logging is off afterwards: no further report.
  fsRegisterMessage(recordMessage);
  fsRegisterMsgLog(fsDefaultMsgLogFunction);
  fsMessage("r", 1, 0, "again");
  fsMessage("r", 1, 0, "third");
  ASSERT_EQ(messageCalls.size(), 3u);
  EXPECT_EQ(messageCalls[1], (Recorded{"fsDefaultMsgLogFunction", 1, {1}, {1}, {36}, {report}}));

  // As the message function it once reported its failure to itself until the stack ran out.
  fsRegisterMessage(fsDefaultMsgLogFunction);
  EXPECT_EQ(captureStdout([] { fsMessage("r", 1, 0, "hello"); }), "");
  std::filesystem::remove("fsmessage.log");
  fsMessage("r", 1, 0, "later");
  fsDefaultMsgLogFlush();
  EXPECT_EQ(readText("fsmessage.log"), "r: later\n");
}

TEST_F(Message, MessagesResultRules) {
  char first[] = "one", second[] = "three";
  char *texts[] = {first, second};
  int32_t codes[] = {0, 5}, auxCodes[] = {3, 4};
  int32_t count = 2, none = 0, result = -1;

  // Defaults: the screen gets both, the result is that of the default function.
  EXPECT_EQ(captureStdout([&] { result = fsMessages("r", &count, codes, auxCodes, texts); }),
            "one\nr: three ");
  EXPECT_EQ(result, 0);

  // Nothing registered, logging off: 1.
  fsRegisterMessage(nullptr);
  EXPECT_EQ(fsMessages("r", &count, codes, auxCodes, texts), 1);

  // The result is that of the last function called; lengths are strlen's.
  fsRegisterMessage(recordMessage);
  messageResult = 7;
  EXPECT_EQ(fsMessages("r", &count, codes, auxCodes, texts), 7);
  const Recorded both{"r", 2, {0, 5}, {3, 4}, {3, 5}, {"one", "three"}};
  EXPECT_EQ(messageCalls, std::vector{both});
  fsRegisterMsgLog(recordLog);
  logResult = 9;
  EXPECT_EQ(fsMessages("r", &count, codes, auxCodes, texts), 9);

  // A count of 0 still calls the functions, with a count of 0.
  logResult = 0;
  EXPECT_EQ(fsMessages("r", &none, codes, auxCodes, texts), 0);
  EXPECT_EQ(logCalls.back().count, 0);
  EXPECT_EQ(fsMessages("r", nullptr, codes, auxCodes, texts), 1);
  // Null arrays call nothing (lengths were once measured from a null `texts`); null text: 0.
  const size_t calls = logCalls.size();
  EXPECT_EQ(fsMessages("r", &count, codes, auxCodes, nullptr), 1);
  EXPECT_EQ(fsMessages("r", &count, nullptr, auxCodes, texts), 1);
  EXPECT_EQ(fsMessages("r", &count, codes, nullptr, texts), 1);
  EXPECT_EQ(logCalls.size(), calls);
  texts[0] = nullptr;
  fsMessages("r", &count, codes, auxCodes, texts);
  EXPECT_EQ(logCalls.back().lengths, (std::vector<int32_t>{0, 5}));
  fsRegisterMsgLog(nullptr);

  // The defaults write nothing for a count of 0 or null arrays; a null text or routine is empty.
  fsDefaultMessage();
  EXPECT_EQ(captureStdout([&] { result = fsMessages("r", &none, codes, auxCodes, texts); }), "");
  EXPECT_EQ(result, 0);
  int32_t lengths[] = {0, 5};
  EXPECT_EQ(captureStdout([&] {
              for (FsMsgFunction f : {fsDefaultMessageFunction, fsDefaultMsgLogFunction}) {
                EXPECT_EQ(f("r", &count, nullptr, nullptr, nullptr, texts), 0);
                EXPECT_EQ(f("r", &count, codes, nullptr, nullptr, nullptr), 0);
              }
              fsDefaultMessageFunction(nullptr, &count, codes, auxCodes, lengths, texts);
              fsDefaultMsgLogFunction("r", &count, codes, auxCodes, lengths, texts);
              fsDefaultMsgLogFlush();
            }),
            "\n: three ");
  EXPECT_EQ(readText("fsmessage.log"), "\nr: three ");
}

TEST_F(Message, CheckStopKeepsTheLowEightBits) {
  EXPECT_EQ(fsCheckStop(), 0);
  static int32_t answer;
  fsRegisterStopFunction([]() -> int32_t { return answer; });
  for (auto [value, expected] : {std::pair{256, 0}, {1, 1}, {-1, 255}}) {
    answer = value;
    EXPECT_EQ(fsCheckStop(), expected) << value;
  }
  fsRegisterStopFunction(nullptr);
  EXPECT_EQ(fsCheckStop(), 0);
  EXPECT_STREQ(FsmOutOfMemory, "Out of Memory");
}
