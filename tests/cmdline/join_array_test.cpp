// SPDX-License-Identifier: MIT
// kwaCmdLnStr and kwaArrayAlloc.
#include <fskit/cmdline.h>
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

// The sanitizer's allocator answers an impossible request with null, as malloc does.
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

namespace {

// Count, capacity and element size.
std::vector<int64_t> shape(const KwaArray &array) {
  return {array.count, array.capacity, array.elemSize};
}

}  // namespace

TEST(ArrayAlloc, GrowsByElementCountAndNeverShrinks) {
  // A negative count gave 0 and changed nothing; it sets the count and keeps the buffer.
  KwaArray none{0, 0, 0, 0, nullptr};
  EXPECT_EQ(kwaArrayAlloc(&none, -1, 8), 0);
  EXPECT_EQ(shape(none), std::vector<int64_t>({-1, 0, 0}));
  KwaArray array{77, 0, 0, 0, nullptr};
  ASSERT_EQ(kwaArrayAlloc(&array, 10, 4), 1);
  std::memset(array.data, 1, 40);  // the whole buffer is there
  void *first = array.data;
  EXPECT_EQ(kwaArrayAlloc(&array, 5, 4) + kwaArrayAlloc(&array, 0, 4), 2);
  EXPECT_EQ(shape(array), std::vector<int64_t>({5, 10, 4}));
  EXPECT_EQ(kwaArrayAlloc(&array, -3, 8), 1);
  EXPECT_EQ(shape(array), std::vector<int64_t>({-3, 10, 4}));
  EXPECT_EQ(array.data, first);
  ASSERT_EQ(kwaArrayAlloc(&array, 12, 2), 1);
  std::memset(array.data, 2, 24);
  EXPECT_EQ(shape(array), std::vector<int64_t>({12, 12, 2}));
  EXPECT_EQ(array.user, 77);
  // A buffer that cannot exist: the new sizes are kept, the buffer is gone.
  EXPECT_EQ(kwaArrayAlloc(&array, INT32_MAX, UINT32_MAX), 0);
  EXPECT_EQ(array.data, nullptr);
  EXPECT_EQ(shape(array), std::vector<int64_t>({INT32_MAX, INT32_MAX, UINT32_MAX}));
}
