// SPDX-License-Identifier: MIT
// Cases of the frame that once went wrong.
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

using fskit::test::captureStdout;
using fskit::test::ChangeDir;
using fskit::test::readText;
using fskit::test::TempDir;

namespace {

int calls = 0;
std::vector<int32_t> lengthsSeen;
int32_t recordCall(const char *, int32_t *count, int32_t *, int32_t *, int32_t *lengths,
                   char **) {
  ++calls;
  lengthsSeen.assign(lengths, lengths + *count);
  return 7;
}

}  // namespace

TEST(FrameRegression, FreeingThroughANullAddressDoesNothing) {
  // fsFree and strfree read through the address they were given, also a null one.
  fsFree(nullptr);
  strfree(nullptr);
  char *block = strmalloc("x");
  strfree(&block);
  EXPECT_EQ(block, nullptr);
}

TEST(FrameRegression, MessagesWithNullArraysCallNothing) {
  char text[] = "x";
  char *texts[] = {text};
  int32_t one = 1, codes[] = {1}, auxCodes[] = {0};
  struct Case {
    int32_t *codes, *auxCodes;
    char **texts;
  };
  // The length array was filled from a null `texts`, and the functions were
  // handed null code arrays for a positive count.
  const Case cases[] = {
      {codes, auxCodes, nullptr},
      {nullptr, auxCodes, texts},
      {codes, nullptr, texts},
  };
  fsRegisterMessage(recordCall);
  for (const Case &c : cases) {
    calls = 0;
    EXPECT_EQ(fsMessages("r", &one, c.codes, c.auxCodes, c.texts), 1);
    EXPECT_EQ(calls, 0);
  }
  EXPECT_EQ(fsMessages("r", &one, codes, auxCodes, texts), 7);
  EXPECT_EQ(calls, 1);
}

TEST(FrameRegression, NullTextsAreEmpty) {
  // A null entry of `texts` was measured with strlen and printed as it came.
  char text[] = "b";
  char *texts[] = {nullptr, text};
  int32_t two = 2, codes[] = {1, 0}, auxCodes[] = {0, 0};
  fsRegisterMessage(recordCall);
  EXPECT_EQ(fsMessages("r", &two, codes, auxCodes, texts), 7);
  EXPECT_EQ(lengthsSeen, (std::vector<int32_t>{0, 1}));
  int32_t lengths[] = {0, 1};
  EXPECT_EQ(captureStdout([&] {
              fsDefaultMessageFunction("r", &two, codes, auxCodes, lengths, texts);
              fsDefaultMessageFunction(nullptr, &two, codes, auxCodes, lengths, texts);
            }),
            "r: \nb\n: \nb\n");
}

TEST(FrameRegression, DefaultFunctionsWithNullArraysWriteNothing) {
  // The default message and log functions read through null codes and texts.
  char text[] = "a";
  char *texts[] = {text};
  int32_t one = 1, codes[] = {1};
  TempDir dir;
  ChangeDir into(dir.path());
  EXPECT_EQ(captureStdout([&] {
              EXPECT_EQ(fsDefaultMessageFunction("r", &one, nullptr, nullptr, nullptr, texts), 0);
              EXPECT_EQ(fsDefaultMessageFunction("r", &one, codes, nullptr, nullptr, nullptr), 0);
              EXPECT_EQ(fsDefaultMsgLogFunction("r", &one, nullptr, nullptr, nullptr, texts), 0);
              EXPECT_EQ(fsDefaultMsgLogFunction("r", &one, codes, nullptr, nullptr, nullptr), 0);
              EXPECT_EQ(fsDefaultMsgLogFunction("r", &one, codes, nullptr, nullptr, texts), 0);
              fsDefaultMsgLogFlush();
            }),
            "");
  EXPECT_EQ(readText(dir.file("fsmessage.log")), "r: a\n");
}

TEST(FrameRegression, LogFunctionAsMessageFunctionSurvivesAnUnopenableFile) {
  TempDir dir;
  ChangeDir into(dir.path());
  ASSERT_TRUE(std::filesystem::create_directory("fsmessage.log"));
  fsRegisterMessage(fsDefaultMsgLogFunction);
  // Used to be handed its own report of the failed open, fail again and
  // report again, until the stack ran out.
  EXPECT_EQ(captureStdout([] { fsMessage("r", 1, 0, "hello"); }), "");
  // Once the file can be made, the next message goes into it.
  std::filesystem::remove("fsmessage.log");
  fsMessage("r", 1, 0, "later");
  fsDefaultMsgLogFlush();
  EXPECT_EQ(readText("fsmessage.log"), "r: later\n");
  fsDefaultMessage();
  fsRegisterMsgLog(nullptr);
}

TEST(FrameRegression, ACopyFromInsideTheOldBlockIsMadeBeforeItIsFreed) {
  // strrealloc freed `old` first and then copied `s` out of the freed block.
  const std::string text = "abcdefghijklmnopqrstuvwxyz0123456789";
  for (size_t k : {size_t{1}, size_t{8}, text.size() - 1, text.size()}) {
    char *old = strmalloc(text.c_str());
    ASSERT_NE(old, nullptr);
    char *copy = strrealloc(old, old + k);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy, text.substr(k)) << k;
    fsFree(&copy);
  }
}

namespace {

std::vector<std::string> textsSeen;
int32_t recordTexts(const char *, int32_t *count, int32_t *, int32_t *, int32_t *lengths,
                    char **texts) {
  for (int32_t i = 0; i < *count; ++i) textsSeen.emplace_back(texts[i], size_t(lengths[i]));
  return 1;
}

// Through a pointer, so that the compiler sees no null format at the call.
void (*const sendMessage)(const char *, int32_t, int32_t, const char *, ...) = fsMessage;

}  // namespace

TEST(FrameRegression, ANullFormatIsTheEmptyText) {
  // vsnprintf was handed the null format.
  fsRegisterMessage(recordTexts);
  sendMessage("r", 1, 0, nullptr);
  sendMessage("r", 1, 0, nullptr, 42, "ignored");
  sendMessage("r", 1, 0, "%d", 42);
  EXPECT_EQ(textsSeen, (std::vector<std::string>{"", "", "42"}));
  fsDefaultMessage();
}
