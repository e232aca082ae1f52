// kwaCmdLnStr and kwaArrayAlloc.
#include <fskit/cmdline.h>
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

// Lets the sanitizer's allocator answer an impossible request with null, as
// malloc does, so that the failure path can be taken.
extern "C" const char *__asan_default_options() { return "allocator_may_return_null=1"; }

TEST(JoinArguments, JoinsWithSingleBlanksAndReportsSize) {
  struct Case {
    std::vector<const char *> argv;
    std::string line;
    int32_t length;  // -5: left as it was
  };
  const std::vector<Case> cases = {
      {{"prog", "a b", "c"}, "a b c", 7},
      {{"prog", ""}, "", 2},
      {{"prog", "", "", "x"}, "  x", 5},
      {{"prog", nullptr, "x"}, " x", 4},
      {{"prog"}, "", -5},
      {{}, "", -5},
  };
  for (const Case &c : cases) {
    int32_t length = -5;
    char *line = kwaCmdLnStr(int32_t(c.argv.size()), const_cast<char **>(c.argv.data()), &length);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line, c.line);
    EXPECT_EQ(length, c.length) << c.line;
    fsFree(&line);
  }
  char *empty = kwaCmdLnStr(-1, nullptr, nullptr);
  EXPECT_STREQ(empty, "");
  fsFree(&empty);
}

TEST(JoinArgumentsDeathTest, EndsProcessWhenLineCannotBeHeld) {
  // 2100 arguments of 1 MiB: more than a 32-bit length can report.
  std::string piece(1 << 20, 'x');
  std::vector<char *> argv(2101, piece.data());
  int32_t length = 0;
  EXPECT_EXIT(kwaCmdLnStr(int32_t(argv.size()), argv.data(), &length),
              testing::ExitedWithCode(1), "^Out of memory in kwaCmdLnStr\\(\\)\n$");
}

TEST(ArrayAlloc, GrowsByElementCountAndNeverShrinks) {
  KwaArray array{};
  array.user = 77;
  ASSERT_EQ(kwaArrayAlloc(&array, 10, 4), 1);
  EXPECT_EQ(array.count, 10);
  EXPECT_EQ(array.capacity, 10);
  EXPECT_EQ(array.elemSize, 4u);
  std::memset(array.data, 1, 40);  // the whole buffer is there
  void *first = array.data;
  EXPECT_EQ(kwaArrayAlloc(&array, 5, 4), 1);
  EXPECT_EQ(array.count, 5);
  EXPECT_EQ(array.capacity, 10);
  EXPECT_EQ(array.data, first);
  EXPECT_EQ(kwaArrayAlloc(&array, 0, 4), 1);
  EXPECT_EQ(kwaArrayAlloc(&array, -3, 4), 0);
  EXPECT_EQ(array.count, 5);
  ASSERT_EQ(kwaArrayAlloc(&array, 12, 4), 1);
  EXPECT_EQ(array.count, 12);
  EXPECT_EQ(array.capacity, 12);
  std::memset(array.data, 2, 48);
  EXPECT_EQ(array.user, 77);

  // A buffer that cannot exist: the new sizes are kept, the buffer is gone.
  EXPECT_EQ(kwaArrayAlloc(&array, INT32_MAX, UINT32_MAX), 0);
  EXPECT_EQ(array.data, nullptr);
  EXPECT_EQ(array.capacity, INT32_MAX);
  EXPECT_EQ(array.elemSize, UINT32_MAX);
  EXPECT_EQ(array.count, INT32_MAX);
  EXPECT_EQ(kwaArrayAlloc(&array, 3, 4), 0);  // still no buffer
  EXPECT_EQ(kwaArrayAlloc(nullptr, 3, 4), 0);
  std::free(array.data);
}
