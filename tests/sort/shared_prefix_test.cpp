// SPDX-License-Identifier: MIT
// fsSortIndex and the in-memory fsStrSort on keys sharing long prefixes (past the eight bytes a
// key carries), prefixes of others, identical keys, bytes 0x01 to 0xff, against a byte sort.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace {

// Keys of a few prefixes (0 to 300 bytes, around the multiples of eight)
// and short tails, so that many keys tie on long runs of bytes, some end
// where others go on, and some repeat. Never a NUL or a newline.
std::vector<std::string> sharedPrefixKeys(int n, unsigned seed) {
  std::mt19937 random(seed);
  const std::string alphabet = "ab \t\x01\x7f\x80\xe9\xff";
  std::vector<std::string> prefixes;
  for (size_t length : {0, 1, 7, 8, 9, 15, 16, 17, 64, 100, 300}) {
    std::string prefix;
    for (size_t k = 0; k < length; ++k) prefix += "2026-11-26T02:13:45Z host-1 app: "[k % 33];
    prefixes.push_back(prefix);
  }
  // One prefix is the start of another, and one differs from it only at its end.
  prefixes.push_back(prefixes[9] + "\xff");
  prefixes.push_back(prefixes[9].substr(0, 99) + "\x01");
  std::vector<std::string> keys;
  for (int k = 0; k < n; ++k) {
    std::string key = prefixes[random() % prefixes.size()];
    for (size_t t = random() % 4; t > 0; --t) key += alphabet[random() % alphabet.size()];
    keys.push_back(key);
  }
  // A group of identical keys large enough for every path of the sort.
  for (int k = 0; k < 1500; ++k) keys.insert(keys.begin() + random() % keys.size(), prefixes[10]);
  return keys;
}

bool bytesLess(const std::string &a, const std::string &b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return static_cast<unsigned char>(x) < static_cast<unsigned char>(y);
  });
}

}  // namespace

// Text keys end at their NUL, byte keys at their element's end (NULs
// included); equal keys keep their order, both ways.
TEST(SharedPrefixSort, IndexSortMatchesAStableReferenceSort) {
  for (int type : {FS_SORT_STRING, FS_SORT_STRING_DESC, FS_SORT_BYTES, FS_SORT_BYTES_DESC}) {
    for (int n : {3, 40, 5000}) {
      SCOPED_TRACE(testing::Message() << "type " << type << " n " << n);
      std::vector<std::string> keys = sharedPrefixKeys(n, unsigned(type * n));
      const bool bytes = type >= FS_SORT_BYTES;
      size_t size = 0;
      for (const std::string &key : keys) size = std::max(size, key.size() + 1);
      std::string data(keys.size() * size, '\0');
      for (size_t k = 0; k < keys.size(); ++k) data.replace(k * size, keys[k].size(), keys[k]);
      // Byte keys run over the whole element: their padding is part of them.
      if (bytes)
        for (size_t k = 0; k < keys.size(); ++k) keys[k] = data.substr(k * size, size);
      std::vector<int32_t> index(keys.size()), expected(keys.size());
      std::iota(index.begin(), index.end(), 0);
      std::iota(expected.begin(), expected.end(), 0);
      const bool down = type % 2 == 0;
      std::stable_sort(expected.begin(), expected.end(), [&](int32_t a, int32_t b) {
        const std::string &x = keys[size_t(a)], &y = keys[size_t(b)];
        return down ? bytesLess(y, x) : bytesLess(x, y);
      });
      fsSortIndex(type, 0, int(size), int(keys.size()), data.data(), index.data());
      ASSERT_TRUE(index == expected);  // not ASSERT_EQ: thousands of numbers
    }
  }
}

// The in-memory sort writes the lines in byte order; collapsing drops the
// empty line and repeats, and counts them.
TEST(SharedPrefixSort, InMemoryFileSortMatchesAReferenceSort) {
  fskit::test::TempDir dir;
  std::vector<std::string> lines = sharedPrefixKeys(6000, 11);
  std::string text;
  for (const std::string &line : lines) text += line + "\n";
  std::sort(lines.begin(), lines.end(), bytesLess);
  std::string sorted;
  std::map<std::string, long> counts;
  for (const std::string &line : lines) {
    sorted += line + "\n";
    if (!line.empty()) ++counts[line];
  }
  std::string in = dir.file("in.txt"), out = dir.file("out.txt");
  fskit::test::writeText(in, text);  // CR LF on Windows, as a text file there
  struct Case {
    bool keep, counts;
  };
  for (Case c : {Case{true, false}, Case{false, false}, Case{false, true}}) {
    SCOPED_TRACE(testing::Message() << "keep " << c.keep << " counts " << c.counts);
    std::string expected;
    long lineCount = 0;
    if (c.keep) {
      expected = sorted;
      lineCount = long(lines.size());
    } else {
      // std::map orders its keys by unsigned bytes too.
      for (const auto &[line, count] : counts)
        expected += c.counts ? line + " " + std::to_string(count) + "\n" : line + "\n";
      lineCount = long(counts.size());
    }
    long result = 0;
    std::string prefix = dir.path() + "/";
    fskit::test::captureStdout(
        [&] { result = fsStrSort(in.c_str(), out.c_str(), prefix.c_str(), 0, c.keep, c.counts); });
    EXPECT_EQ(result, lineCount);
    // Not EXPECT_EQ: a failure would print megabytes.
    EXPECT_TRUE(fskit::test::readText(out) == expected);
  }
}
