// SPDX-License-Identifier: MIT
// The frame's allocating functions under allocation failure.
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/alloc_fault.h"

using fskit::test::forEachAllocationFailure;

TEST(FrameFaults, CopiesGiveNullAndReleaseAsDocumented) {
  // strrealloc has released `old` whether or not the copy succeeded; the
  // leak checker of the sanitizer build would report it otherwise.
  const struct {
    char *(*copy)();
    long runs;
  } copies[] = {{[] { return strmalloc("abc"); }, 2},
                {[] { return strnmalloc("abc", 8); }, 2},
                {[] { return strrealloc(strmalloc("old"), "abc"); }, 3}};
  char *result = nullptr;
  for (const auto &row : copies) {
    long runs = forEachAllocationFailure([&] { result = row.copy(); },
                                         [&](long, bool refused) {
                                           EXPECT_EQ(result == nullptr, refused);
                                           if (!refused) {
                                             EXPECT_STREQ(result, "abc");
                                           }
                                           fsFree(&result);
                                         });
    EXPECT_EQ(runs, row.runs);
  }

  // strrealloc2 keeps `old` when it cannot allocate.
  char *old = strmalloc("keep");
  forEachAllocationFailure([&] { result = strrealloc2(old, old, "+", nullptr); },
                           [&](long, bool refused) {
                             if (refused) {
                               EXPECT_EQ(result, nullptr);
                               EXPECT_STREQ(old, "keep");
                             } else {
                               EXPECT_STREQ(result, "keep+");
                               old = nullptr;  // released by the successful call
                             }
                           });
  fsFree(&result);
}

namespace {
int calls = 0;
int32_t countCall(const char *, int32_t *, int32_t *, int32_t *, int32_t *, char **) {
  ++calls;
  return 0;
}
}  // namespace

TEST(FrameFaults, MessagesWithoutMemoryCallNothing) {
  char text[] = "x";
  char *texts[] = {text};
  int32_t count = 1, codes[] = {1}, auxCodes[] = {0};
  int32_t result = -1;
  fsRegisterMessage(countCall);
  long runs = forEachAllocationFailure(
      [&] {
        calls = 0;
        result = fsMessages("r", &count, codes, auxCodes, texts);
      },
      [&](long, bool refused) {
        EXPECT_EQ(result, refused ? 1 : 0);
        EXPECT_EQ(calls, refused ? 0 : 1);
      });
  EXPECT_EQ(runs, 2);
}
