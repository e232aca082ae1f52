// SPDX-License-Identifier: MIT
// The allocation helpers: exact block contents, release rules and fsFree.
#include <fskit/frame.h>
#include <gtest/gtest.h>

using namespace std::string_literals;

namespace {

// The first `size` bytes of a block that the library made, which is then freed.
std::string taken(char *block, size_t size) {
  std::string bytes(block, size);
  fsFree(&block);
  EXPECT_EQ(block, nullptr);
  return bytes;
}

}  // namespace

TEST(Alloc, CopiesHoldExactlyTheseBytes) {
  EXPECT_EQ(taken(strmalloc("abc\x80"), 5), "abc\x80\0"s);
  EXPECT_EQ(taken(strmalloc(""), 1), "\0"s);
  EXPECT_EQ(taken(strnmalloc("abcdef", 4), 4), "abc\0"s);
  EXPECT_EQ(taken(strnmalloc("ab", 6), 6), "ab\0\0\0\0"s);
  EXPECT_EQ(taken(strnmalloc("ab", 1), 1), "\0"s);
  EXPECT_EQ(taken(strrealloc2(nullptr, "a", "b", "c", nullptr), 4), "abc\0"s);
  // With a null first text the further texts are not read at all.
  EXPECT_EQ(taken(strrealloc2(nullptr, nullptr, reinterpret_cast<const char *>(1)), 1), "\0"s);
  EXPECT_EQ(strmalloc(nullptr), nullptr);
  EXPECT_EQ(strnmalloc("ab", 0), nullptr);
  EXPECT_EQ(strnmalloc(nullptr, 5), nullptr);
  char *copy = strmalloc("x");
  strfree(&copy);
  EXPECT_EQ(copy, nullptr);
  fsFree(&copy);  // a null pointer is left alone
  fsFree(nullptr);  // so is a null address (it was once read through)
  strfree(nullptr);
}

// An old block that is not released shows in the sanitizer build's leak check.
TEST(Alloc, ReallocReleasesOldUnlessItIsTheSource) {
  EXPECT_EQ(taken(strrealloc(strmalloc("old"), nullptr), 1), "\0"s);
  char *kept = strrealloc(nullptr, "x");
  char *fresh = strrealloc(kept, kept);
  EXPECT_NE(fresh, kept);
  EXPECT_EQ(taken(fresh, 2), "x\0"s);
  EXPECT_EQ(taken(kept, 2), "x\0"s);
  // A source inside the old block is copied before it is freed (once read from the freed block).
  const std::string text = "abcdefghijklmnopqrstuvwxyz0123456789";
  for (size_t k : {size_t{1}, size_t{8}, size_t{35}}) {
    char *old = strmalloc(text.c_str());
    EXPECT_EQ(taken(strrealloc(old, old + k), text.size() - k + 1), text.substr(k) + '\0');
  }
  char *joined = strmalloc("abc");
  joined = strrealloc2(joined, joined, "x", nullptr);
  EXPECT_STREQ(joined, "abcx");
  EXPECT_EQ(taken(strrealloc2(joined, nullptr), 1), "\0"s);
  EXPECT_EQ(taken(strrealloc2(strmalloc("old"), "", "", "tail", "", nullptr), 5), "tail\0"s);
}
