// SPDX-License-Identifier: MIT
// The sorts under allocation failure: typed sorts fall back to in place, fsSortArrays sorts or
// moves nothing, fsStrSort writes all or fails, leaving no work file; a refused buffer is halved.
#include <fskit/sort.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/support/alloc_fault.h"
#include "tests/support/test_support.h"

using namespace fskit::test;

namespace {

using Bytes = std::vector<unsigned char>;
using Loop = long (*)(const std::function<void()> &, const std::function<void(long, bool)> &);
// Memory that runs out for good, and memory refused once.
constexpr Loop kLoops[] = {forEachAllocationFailure, forEachSingleAllocationFailure};

struct Layout {
  int type, offset, size;
  size_t keyWidth;  // 0: to the NUL (strings) or to the element's end (bytes)
};

// Each element's key in turn: what a sort must order, whatever it does with equal keys.
std::vector<Bytes> keysOf(const Layout &layout, const Bytes &data, const int32_t *index = nullptr) {
  std::vector<Bytes> keys;
  for (size_t i = 0; i < data.size() / size_t(layout.size); ++i) {
    const unsigned char *key = data.data() + size_t(index ? index[i] : int32_t(i)) * size_t(layout.size) +
                               size_t(layout.offset);
    size_t width = layout.keyWidth ? layout.keyWidth : size_t(layout.size - layout.offset);
    if (layout.type == FS_SORT_STRING) width = strnlen(reinterpret_cast<const char *>(key), width);
    keys.emplace_back(key, key + width);
  }
  return keys;
}

// The elements as a sorted list of byte strings: equal when nothing was lost.
std::vector<Bytes> elementsOf(const Layout &layout, const Bytes &data) {
  std::vector<Bytes> elements;
  for (size_t at = 0; at < data.size(); at += size_t(layout.size))
    elements.emplace_back(data.begin() + long(at), data.begin() + long(at) + layout.size);
  std::sort(elements.begin(), elements.end());
  return elements;
}

}  // namespace

TEST(SortFaults, TypedSortsOrderWithoutMemory) {
  // Bare keys, whole records, records moved through an order, text and byte keys; 100 each.
  const Layout layouts[] = {{FS_SORT_LONG, 0, 4, 4},   {FS_SORT_DOUBLE_DESC, 4, 12, 8},
                            {FS_SORT_SHORT, 2, 10, 2}, {FS_SORT_STRING, 1, 9, 0},
                            {FS_SORT_BYTES, 0, 3, 0}};
  std::mt19937 random(12);
  for (const Layout &layout : layouts) {
    SCOPED_TRACE(layout.type);
    Bytes data(100 * size_t(layout.size));
    for (unsigned char &byte : data) byte = static_cast<unsigned char>(random() % 8);  // many ties
    if (layout.type == FS_SORT_STRING)  // an index sort reads a text key up to its NUL
      for (size_t end = 8; end < data.size(); end += 9) data[end] = 0;
    if (layout.type == FS_SORT_DOUBLE_DESC)  // doubles from small integers: no NaN, no -0
      for (size_t at = 4; at < data.size(); at += 12) {
        double value = double(random() % 50);
        std::memcpy(&data[at], &value, 8);
      }
    Bytes sorted = data;
    fsSort(layout.type, layout.offset, layout.size, 100, sorted.data());
    const std::vector<Bytes> keys = keysOf(layout, sorted);
    std::vector<int32_t> identity(100), index(100);
    std::iota(identity.begin(), identity.end(), 0);
    // One sort after the other: each meets every failure point of its own.
    for (Loop loop : kLoops) {
      loop([&] {
             std::copy(data.begin(), data.end(), sorted.begin());
             fsSort(layout.type, layout.offset, layout.size, 100, sorted.data());
             std::copy(identity.begin(), identity.end(), index.begin());
             fsSortIndex(layout.type, layout.offset, layout.size, 100, data.data(), index.data());
           },
           [&](long, bool) {
             EXPECT_EQ(keysOf(layout, sorted), keys);
             EXPECT_EQ(elementsOf(layout, sorted), elementsOf(layout, data));
             EXPECT_EQ(keysOf(layout, data, index.data()), keys);
             EXPECT_TRUE(std::is_permutation(index.begin(), index.end(), identity.begin()));
           });
    }
  }
}

TEST(SortFaults, ParallelArraysSortOrStayWithAMessage) {
  std::vector<int32_t> keys(100), sortedKeys(100);
  std::iota(keys.begin(), keys.end(), 0);
  std::shuffle(keys.begin(), keys.end(), std::mt19937(3));
  std::vector<int64_t> moved(100);
  StreamCatcher err(stderr);
  for (Loop loop : kLoops) {
    loop(
        [&] {
          std::copy(keys.begin(), keys.end(), sortedKeys.begin());
          for (size_t i = 0; i < 100; ++i) moved[i] = int64_t(keys[i]) * 1000;
          err.start();
          fsSortArrays(FS_SORT_LONG, 100, 2, 4L, sortedKeys.data(), 8L, moved.data());
        },
        [&](long, bool refused) {
          const std::string printed = err.stop();
          if (printed.empty()) {
            for (size_t i = 0; i < 100; ++i) ASSERT_TRUE(sortedKeys[i] == int32_t(i) && moved[i] == int64_t(i) * 1000);
          } else {
            EXPECT_TRUE(refused);
            EXPECT_EQ(printed, "fsSortArrays: out of memory\n");
            EXPECT_EQ(sortedKeys, keys);  // nothing moved
          }
        });
  }
}

TEST(SortFaults, FileSortWritesAllOrFailsAndHalvesItsBuffer) {
  TempDir dir;
  const std::string input = dir.file("in.txt"), output = dir.file("out.txt"), prefix = dir.path() + "/";
  std::string lines;
  std::mt19937 random(8);
  for (int i = 0; i < 300; ++i) lines += std::to_string(random() % 1000) + "\n";
  writeFile(input, lines);
  const long size = long(lines.size());
  StreamCatcher out(stdout);
  out.start();  // with memory, as the file sort tests check it
  ASSERT_EQ(fsStrSort(input.c_str(), output.c_str(), prefix.c_str(), 0, 1, 0), 300);
  out.stop();
  const std::string expected = readFile(output);
  for (long buffer : {0L, size / 12}) {  // in memory; in 12 or more chunks
    for (Loop loop : kLoops) {
      bool halved = false;
      long result = -1;
      loop(
          [&] {
            out.start();
            result = fsStrSort(input.c_str(), output.c_str(), prefix.c_str(), buffer, 1, 0);
          },
          [&](long k, bool refused) {
            SCOPED_TRACE(k);
            const std::string printed = out.stop();
            auto workFile = [](const auto &entry) {
              return entry.path().filename().string().starts_with("sort_");
            };
            EXPECT_TRUE(std::ranges::none_of(std::filesystem::directory_iterator(dir.path()),
                                             workFile))
                << printed;
            if (result == 0) {
              EXPECT_TRUE(refused);
            } else {
              EXPECT_EQ(result, 300);
              EXPECT_EQ(readFile(output), expected);
            }
            halved |= result == 300 && printed.find(" with " + std::to_string(size) + " bytes, " +
                                                    std::to_string((buffer ? buffer : size) / 2) +
                                                    " bytes at a time") != std::string::npos;
            std::filesystem::remove(output);
          });
      if (loop == forEachSingleAllocationFailure) {
        EXPECT_TRUE(halved);  // the first buffer refused, half of it taken
      }
    }
  }
}
