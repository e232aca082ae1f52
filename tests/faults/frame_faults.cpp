// SPDX-License-Identifier: MIT
// The frame's allocating functions under allocation failure.
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/alloc_fault.h"

using fskit::test::forEachAllocationFailure;

TEST(FrameFaults, CopiesGiveNullAndReleaseAsDocumented) {
  char *result = nullptr;
  for (bool bounded : {false, true}) {
    long runs = forEachAllocationFailure(
        [&] { result = bounded ? strnmalloc("abc", 8) : strmalloc("abc"); },
        [&](long, bool refused) {
          EXPECT_EQ(result == nullptr, refused);
          fsFree(&result);
        });
    EXPECT_EQ(runs, 2);
  }

  // strrealloc has released `old` whether or not the copy succeeded; the
  // leak checker of the sanitizer build would report it otherwise.
  forEachAllocationFailure([&] { result = strrealloc(strmalloc("old"), "new"); },
                           [&](long k, bool refused) {
                             if (!refused) {
                               EXPECT_STREQ(result, "new");
                             } else if (k == 2) {
                               EXPECT_EQ(result, nullptr);  // old was released
                             }
                             fsFree(&result);
                           });

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
