// SPDX-License-Identifier: MIT
// The allocation helpers: exact block contents, release rules and fsFree.
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>


TEST(Alloc, StrmallocCopiesWithTerminator) {
  char *empty = strmalloc("");
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(empty[0], '\0');
  fsFree(&empty);
  EXPECT_EQ(empty, nullptr);
  fsFree(&empty);  // a null pointer is left alone
  fsFree(nullptr);  // so is a null address (it was once read through)
  strfree(nullptr);
  EXPECT_EQ(strmalloc(nullptr), nullptr);
  char *copy = strmalloc("abc\x80");
  EXPECT_EQ(std::string(copy, 5), std::string("abc\x80\0", 5));
  strfree(&copy);
  EXPECT_EQ(copy, nullptr);
}

TEST(Alloc, StrnmallocGivesExactlySizeBytes) {
  char *cut = strnmalloc("abcdef", 4);
  EXPECT_EQ(std::string(cut, 4), std::string("abc\0", 4));
  char *padded = strnmalloc("ab", 6);
  EXPECT_EQ(std::string(padded, 6), std::string("ab\0\0\0\0", 6));
  char *one = strnmalloc("ab", 1);
  EXPECT_EQ(one[0], '\0');
  EXPECT_EQ(strnmalloc("ab", 0), nullptr);
  EXPECT_EQ(strnmalloc(nullptr, 5), nullptr);
  fsFree(&cut);
  fsFree(&padded);
  fsFree(&one);
}

TEST(Alloc, StrreallocReleasesOldUnlessItIsTheSource) {
  char *p = strmalloc("old");
  p = strrealloc(p, nullptr);  // old freed (the leak checker would see it otherwise)
  EXPECT_STREQ(p, "");
  char *q = strrealloc(nullptr, "x");
  EXPECT_STREQ(q, "x");
  // Same pointer: old is kept, a fresh copy returned.
  char *fresh = strrealloc(q, q);
  EXPECT_NE(fresh, q);
  EXPECT_STREQ(fresh, "x");
  EXPECT_STREQ(q, "x");
  fsFree(&p);
  fsFree(&q);
  fsFree(&fresh);
  // A source inside the old block is copied before the block is freed (it
  // was once copied out of the freed block).
  for (size_t k : {size_t{1}, size_t{8}, size_t{35}}) {
    char *old = strmalloc("abcdefghijklmnopqrstuvwxyz0123456789");
    char *copy = strrealloc(old, old + k);
    EXPECT_EQ(copy, std::string("abcdefghijklmnopqrstuvwxyz0123456789").substr(k));
    fsFree(&copy);
  }
}

TEST(Alloc, Strrealloc2JoinsThenReleasesOld) {
  char *p = strmalloc("abc");
  p = strrealloc2(p, p, "x", nullptr);
  EXPECT_STREQ(p, "abcx");
  p = strrealloc2(p, nullptr);
  EXPECT_STREQ(p, "");
  char *joined = strrealloc2(nullptr, "a", "b", "c", nullptr);
  EXPECT_EQ(std::string(joined, 4), std::string("abc\0", 4));
  // With a null first text the further texts are not read at all.
  char *empty = strrealloc2(nullptr, nullptr, reinterpret_cast<const char *>(1));
  EXPECT_STREQ(empty, "");
  char *many = strrealloc2(joined, "", "", "long tail", "", nullptr);
  EXPECT_STREQ(many, "long tail");
  fsFree(&p);
  fsFree(&empty);
  fsFree(&many);
}
