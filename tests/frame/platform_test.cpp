// SPDX-License-Identifier: MIT
// The platform query, fsDiskListFree, systemNoWait and the platform layer's own helpers.
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <climits>
#include <ctime>

#include "platform/file_offset.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

TEST(Platform, QueryFillsOnlyGivenBuffersAndNoMore) {
  std::string os(8, '#'), order(9, '#'), format(7, '#');
  fsGetPlatform(nullptr, nullptr, format.data());
  EXPECT_EQ(format, std::string("ieee\0##", 7));
  EXPECT_EQ(os, std::string(8, '#'));
  fsGetPlatform(os.data(), order.data(), nullptr);
  EXPECT_EQ(os, std::string("winnt\0##", 8));
  EXPECT_EQ(order, std::string("little\0##", 9));
}

// The leak checker of the sanitizer build proves that every block is freed.
TEST(Platform, DiskListFreeReleasesEntriesAndList) {
  char **list = static_cast<char **>(malloc(3 * sizeof(char *)));
  list[0] = strmalloc("a");
  list[1] = nullptr;
  list[2] = strmalloc("c");
  fsDiskListFree(3, list);
  fsDiskListFree(0, static_cast<char **>(malloc(sizeof(char *))));
  fsDiskListFree(-4, static_cast<char **>(malloc(1)));
}

TEST(Platform, SystemNoWaitWaitsAndReturnsTheStatus) {
  fskit::test::TempDir dir;
  std::string marker = dir.file("done");
#if defined(_WIN32)
  // cmd.exe runs the command, and the result is its exit code.
  const std::string make = "echo done> \"" + marker + "\"";
  const int exitThree = 3;
#else
  const std::string make = "touch " + marker;
  const int exitThree = 3 << 8;  // a wait status
#endif
  EXPECT_EQ(systemNoWait(make.c_str()), 0);
  EXPECT_TRUE(fskit::test::fileExists(marker));
  EXPECT_EQ(systemNoWait("exit 3"), exitThree);
}

// The library's asctime (no shared buffer) is the runtime's, also for years past 9999 or pre-1900.
TEST(Platform, AscTimeTextIsTheRuntimes) {
#if defined(_WIN32)
  // The Windows runtime's local time covers 1970 to 3000 only.
  const long long starts[] = {0, 900000000, 30000000000LL};
#else
  const long long starts[] = {-2208988800LL * 2, -86400, 0, 900000000, 253402300799LL,
                              253402300800LL, 400000000000LL};
#endif
  for (long long start : starts)
    for (long long step = 0; step < 50; ++step) {
      std::time_t seconds = std::time_t(start + step * 3607 * 29);
      std::tm local;
      ASSERT_TRUE(fskit::platform::localTime(seconds, local));
      char text[fskit::platform::kAscTimeSize];
      ASSERT_TRUE(fskit::platform::ascTime(local, text));
      const std::tm *shared = std::localtime(&seconds);
      ASSERT_NE(shared, nullptr);
      EXPECT_STREQ(text, std::asctime(shared)) << seconds;
    }
  std::tm farFuture{};
  farFuture.tm_year = INT_MAX - 1899;
  char text[fskit::platform::kAscTimeSize];
  EXPECT_FALSE(fskit::platform::ascTime(farFuture, text));
}

// Positions past 4 GiB in a sparse file, where a 32-bit long would have failed or wrapped.
TEST(Platform, StreamPositionsPastFourGibibytes) {
  namespace platform = fskit::platform;
  fskit::test::TempDir dir;
  std::FILE *file = std::fopen(dir.file("large").c_str(), "w+b");
  ASSERT_NE(file, nullptr);
  const platform::FileOffset far = (platform::FileOffset(5) << 30) + 3;
  ASSERT_EQ(platform::seekFile(file, far, SEEK_SET), 0);
  ASSERT_EQ(std::fputc('x', file), 'x');
  EXPECT_EQ(platform::tellFile(file), far + 1);
  ASSERT_EQ(platform::seekFile(file, -1, SEEK_END), 0);
  EXPECT_EQ(platform::tellFile(file), far);
  EXPECT_EQ(std::fgetc(file), 'x');
  std::fclose(file);
}
