// SPDX-License-Identifier: MIT
// The frame, strings, command-line and files functions under allocation failure: each gives
// its whole result, or its documented failure with nothing half done and nothing leaked.
#include <fskit/cmdline.h>
#include <fskit/files.h>
#include <fskit/frame.h>
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "tests/support/alloc_fault.h"
#include "tests/support/test_support.h"

using namespace fskit::test;

namespace {

int calls = 0;
int32_t countCall(const char *, int32_t *, int32_t *, int32_t *, int32_t *, char **) {
  ++calls;
  return 0;
}

// The text of a copy, or "null"; the copy is released.
std::string taken(char *&copy) {
  std::string text = copy != nullptr ? copy : "null";
  fsFree(&copy);
  return text;
}

}  // namespace

// Each call is made armed, then its result told as text: whole, or its failure when refused.
TEST(EntryPointFaults, EachGivesItsResultOrItsFailure) {
  TempDir dir;
  const std::string path = dir.file("f");
  char *copy = nullptr, *filled = nullptr, *old = strmalloc("keep"), field[8], error[128];
  char prog[] = "prog", text[] = "x";
  char *argv[] = {prog}, *texts[] = {text};
  int32_t count = 1, codes[] = {1}, auxCodes[] = {0}, result = -1;
  FsFile file{};
  KwaArray array{7, 0, 0, 0, nullptr};
  ASSERT_EQ(kwaArrayAlloc(&array, 4, 8), 1);
  fsRegisterMessage(countCall);
  const struct {
    const char *name;
    std::function<void()> call;
    std::function<std::string()> told;  // when empty: taken(copy)
    std::string whole, refused;
    long runs;
  } entries[] = {
      {"strmalloc", [&] { copy = strmalloc("abc"); }, {}, "abc", "null", 2},
      {"strnmalloc", [&] { copy = strnmalloc("abc", 8); }, {}, "abc", "null", 2},
      // strrealloc has released `old` whether or not the copy succeeded.
      {"strrealloc", [&] { copy = strrealloc(strmalloc("old"), "abc"); }, {}, "abc", "null", 3},
      // strrealloc2 keeps `old` when it cannot allocate, and releases it when it can.
      {"strrealloc2", [&] { copy = strrealloc2(old, old, "+", nullptr); },
       [&] {
         if (copy == nullptr) return "null " + std::string(old);
         old = nullptr;
         return taken(copy);
       },
       "keep+", "null keep", 2},
      {"kwaCmdLnStr", [&] { copy = kwaCmdLnStr(1, argv, nullptr); }, {}, "", "null", 2},
      // A field copy that fails leaves the destination untouched.
      {"strfcpy",
       [&] {
         std::memset(field, '~', sizeof field);
         filled = strfcpy(field, sizeof field, "  ab   cd  ", 11);
       },
       [&] { return (filled == field ? "field " : "null ") + std::string(field, sizeof field); },
       std::string("field ab cd\0\0\0", 14), "null ~~~~~~~~", 2},
      // Without memory no message function is called.
      {"fsMessages",
       [&] {
         calls = 0;
         result = fsMessages("r", &count, codes, auxCodes, texts);
       },
       [&] { return std::to_string(result) + " calls " + std::to_string(calls); }, "0 calls 1",
       "1 calls 0", 2},
      {"fsFileOpen", [&] { result = fsFileOpen(path.c_str(), "w", &file, error); },
       [&] {
         std::string told = result == 1 ? "open" : error + std::string(file.name ? " name" : "");
         fsFileClose(&file, nullptr);
         return told;
       },
       "open", "12 Not enough memory", 2},
      // The sizes are the new ones, with or without the buffer.
      {"kwaArrayAlloc", [&] { result = kwaArrayAlloc(&array, 10, 2); },
       [&] {
         std::string told = std::to_string(result) + (array.data ? " data " : " null ") +
                            std::to_string(array.count) + " " + std::to_string(array.capacity) + " " +
                            std::to_string(array.elemSize) + " " + std::to_string(array.user);
         if (result == 0) array.capacity = 4;  // ask again for more than it has
         return told;
       },
       "1 data 10 10 2 7", "0 null 10 10 2 7", 2},
  };
  for (const auto &entry : entries) {
    SCOPED_TRACE(entry.name);
    long runs = forEachAllocationFailure(entry.call, [&](long, bool refused) {
      EXPECT_EQ(entry.told ? entry.told() : taken(copy), refused ? entry.refused : entry.whole);
    });
    EXPECT_EQ(runs, entry.runs);
  }
  std::free(array.data);
}

TEST(EntryPointFaults, AShortTextInAHugeFieldNeedsLittleMemory) {
  // The work copy was as large as the field said (4 GiB here): without that much, it failed.
  refuseAllocationsAbove(1 << 20);
  char dst[16];
  std::memset(dst, '~', sizeof dst);
  EXPECT_EQ(strfcpy(dst, sizeof dst, "  ab   cd", UINT32_MAX), dst);
  refuseAllocationsAbove(0);
  EXPECT_EQ(std::string(dst, sizeof dst), std::string("ab cd\0\0\0\0\0\0\0\0\0\0\0", 16));
}

TEST(EntryPointFaults, JoinedLineEndsTheProcessWithoutMemory) {
  char prog[] = "prog", a[] = "a";
  char *argv[] = {prog, a};
  EXPECT_EXIT(
      {
        failAllocationFrom(1);
        kwaCmdLnStr(2, argv, nullptr);
      },
      testing::ExitedWithCode(1), "^Out of memory in kwaCmdLnStr\\(\\)\n$");
}

TEST(EntryPointFaults, TableThatCannotGrowIsReleased) {
  // Ten records fill the first block, the eleventh needs a second. Every failure leaves a null
  // table (the old block released, as the leak checkers confirm) or all eleven records.
  std::string file;
  for (int i = 0; i < 11; ++i) file += "t" + std::to_string(i) + " label " + std::to_string(i) + "\n";
  int32_t count = 0, capacity = 0, result = 0;
  KwaTagEntry *table = nullptr;
  long runs = forEachAllocationFailure(
      [&] {
        count = capacity = 0;
        std::FILE *stream = fmemopen(file.data(), file.size(), "r");
        result = kwaReadTags(stream, 0, &count, &capacity, &table);
        std::fclose(stream);
      },
      [&](long k, bool refused) {
        EXPECT_EQ(result, 1);
        EXPECT_EQ(table == nullptr, refused);
        EXPECT_EQ(count, refused ? 10 * (k - 1) : 11);
        std::free(table);
        table = nullptr;
      });
  EXPECT_EQ(runs, 3);

  count = capacity = 1;
  table = static_cast<KwaTagEntry *>(std::calloc(1, sizeof(KwaTagEntry)));
  failAllocationFrom(1);
  EXPECT_EQ(kwaAddToTbl("B", "b", &count, &capacity, &table), 0);
  failAllocationFrom(0);
  EXPECT_TRUE(table == nullptr && count == 1);
}
