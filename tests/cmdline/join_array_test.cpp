// SPDX-License-Identifier: MIT
// kwaCmdLnStr and kwaArrayAlloc.
#include <fskit/cmdline.h>
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

// Lets the sanitizer's allocator answer an impossible request with null, as
// malloc does, so that the failure path can be taken.
extern "C" const char *__asan_default_options() { return "allocator_may_return_null=1"; }

TEST(JoinArguments, JoinsWithSingleBlanksAndReportsSize) {
  const struct {
    std::vector<const char *> argv;
    std::string line;
    int32_t length;  // -5: not written
  } cases[] = {{{"prog", "a b", "c"}, "a b c", 7}, {{"prog", "", nullptr, "x"}, "  x", 5},
               {{"prog"}, "", -5},                  {{}, "", -5}};
  for (const auto &c : cases) {
    int32_t length = -5;
    char *line = kwaCmdLnStr(int32_t(c.argv.size()), const_cast<char **>(c.argv.data()), &length);
    EXPECT_EQ(std::string(line), c.line);
    EXPECT_EQ(length, c.length) << c.line;
    fsFree(&line);
  }
  // 2100 arguments of 1 MiB: more than a 32-bit length can report.
  std::string piece(1 << 20, 'x');
  std::vector<char *> argv(2101, piece.data());
  EXPECT_EXIT(kwaCmdLnStr(int32_t(argv.size()), argv.data(), nullptr), testing::ExitedWithCode(1),
              "^Out of memory in kwaCmdLnStr\\(\\)\n$");
}

TEST(ArrayAlloc, GrowsByElementCountAndNeverShrinks) {
  KwaArray array{77, 0, 0, 0, nullptr};
  ASSERT_EQ(kwaArrayAlloc(&array, 10, 4), 1);
  std::memset(array.data, 1, 40);  // the whole buffer is there
  void *first = array.data;
  EXPECT_EQ(kwaArrayAlloc(&array, 5, 4) + kwaArrayAlloc(&array, 0, 4), 2);
  EXPECT_EQ(std::vector<int32_t>({array.count, array.capacity, int32_t(array.elemSize)}),
            std::vector<int32_t>({5, 10, 4}));
  EXPECT_EQ(array.data, first);
  ASSERT_EQ(kwaArrayAlloc(&array, 12, 2), 1);
  std::memset(array.data, 2, 24);
  EXPECT_EQ(std::vector<int32_t>({array.count, array.capacity, int32_t(array.elemSize)}),
            std::vector<int32_t>({12, 12, 2}));
  EXPECT_EQ(array.user, 77);
  // A buffer that cannot exist: the new sizes are kept, the buffer is gone.
  EXPECT_EQ(kwaArrayAlloc(&array, INT32_MAX, UINT32_MAX), 0);
  EXPECT_EQ(array.data, nullptr);
  EXPECT_EQ(array.capacity, INT32_MAX);
  EXPECT_EQ(array.elemSize, UINT32_MAX);
}

TEST(ArrayAlloc, ArrayAllocTakesANegativeCountAsASmallerOne) {
  struct Case {
    bool withBuffer;
    int32_t n, result, count, capacity;
  };
  const Case cases[] = {
      // A negative count gave 0 and changed nothing; it sets the count and
      // the result tells whether there is a buffer.
      {true, -3, 1, -3, 10},
      {false, -1, 0, -1, 0},
  };
  for (const Case &c : cases) {
    KwaArray array{0, 0, 0, 0, nullptr};
    if (c.withBuffer) {
      ASSERT_EQ(kwaArrayAlloc(&array, 10, 4), 1);
    }
    void *buffer = array.data;
    EXPECT_EQ(kwaArrayAlloc(&array, c.n, 8), c.result) << c.n;
    EXPECT_EQ(array.count, c.count);
    EXPECT_EQ(array.capacity, c.capacity);
    EXPECT_EQ(array.data, buffer);  // never freed nor reallocated
    EXPECT_EQ(array.elemSize, c.withBuffer ? 4u : 0u);
    std::free(array.data);
  }
}
