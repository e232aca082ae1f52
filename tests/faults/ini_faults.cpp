// SPDX-License-Identifier: MIT
// The INI functions under allocation and write failures (fdopen wrapped): a document keeps
// what was read or set, and a file is replaced only by the whole document.
#include <fskit/ini.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/support/alloc_fault.h"
#include "tests/support/ini_walk.h"
#include "tests/support/test_support.h"

using namespace fskit::test;

namespace {

const std::string kText = "[A]\nx = 1\ny = 2\n; c\n[B]\nz = 3\n[A]\nw = 4\n";
const std::string kWalk = "A|x|1;A|y|2;B|z|3;A|x|1;A|y|2;";  // a second A walks the first

// While armed (byteLimit >= 0), fdopen gives a stream that takes `byteLimit` bytes and then
// fails, as a full disk would; with `closeFails` its close fails too.
struct {
  long byteLimit = -1;
  bool closeFails = false;
  long bytesAccepted = 0;
} writeFault;

}  // namespace

extern "C" std::FILE *__real_fdopen(int fd, const char *mode);

extern "C" std::FILE *__wrap_fdopen(int fd, const char *mode) {
  if (writeFault.byteLimit < 0) return __real_fdopen(fd, mode);
  writeFault.bytesAccepted = 0;
  cookie_io_functions_t io{};
  io.write = [](void *cookie, const char *data, size_t size) -> ssize_t {
    if (writeFault.bytesAccepted + long(size) > writeFault.byteLimit) {
      errno = ENOSPC;
      return 0;
    }
    writeFault.bytesAccepted += long(size);
    return write(int(reinterpret_cast<intptr_t>(cookie)), data, size);
  };
  io.close = [](void *cookie) {
    return close(int(reinterpret_cast<intptr_t>(cookie))) != 0 || writeFault.closeFails ? -1 : 0;
  };
  return fopencookie(reinterpret_cast<void *>(intptr_t(fd)), mode, io);
}

class IniFaults : public testing::Test {
 protected:
  IniFaults() { writeFile(path, kText); }
  TempDir dir;
  const std::string path = dir.file("a.ini");
};

TEST_F(IniFaults, OpeningKeepsWhatWasRead) {
  for (bool read : {false, true}) {
    int32_t handle = 0;
    StreamCatcher err(stderr);
    long runs = forEachAllocationFailure(
        [&] {
          err.start();
          handle = read ? fsIniReadFile(path.c_str()) : fsIniNewFile(path.c_str());
        },
        [&](long k, bool refused) {
          SCOPED_TRACE(k);
          const std::string printed = err.stop();
          if (handle == 0) {  // no memory for the name's copy (the first) or the document
            EXPECT_TRUE(refused);
            EXPECT_EQ(printed, (k == 1 ? "Out of memory for ini file " : "Error allocating ini file ") + path + "\n");
            return;
          }
          EXPECT_EQ(printed, "");
          // Reading stops where memory ran out; what was read stays.
          const std::string values = iniWalk(handle, ";");
          EXPECT_EQ(values, !read ? "" : refused ? kWalk.substr(0, values.size()) : kWalk);
          fsIniReleaseFile(handle);
        });
    EXPECT_GT(runs, read ? 20 : 3);
  }
}

TEST_F(IniFaults, SettingKeepsTheRest) {
  const int32_t handle = fsIniReadFile(path.c_str());
  StreamCatcher lookups(stderr);  // a value lost to the failure is reported when looked up
  auto valueOf = [&](const char *paragraph, const char *topic) {
    char value[64];
    lookups.start();
    std::string found = fsIniGetValue(handle, paragraph, topic, value, nullptr) == 1 ? value : "-";
    lookups.stop();
    return found;
  };
  // A new paragraph, topic and value: every other value stays, whatever memory there is.
  const char *const changes[][3] = {{"C", "n", "5"}, {"B", "m", "6"}, {"A", "x", "7"}};
  for (const auto &change : changes) {
    int32_t result = 0;
    forEachAllocationFailure(
        [&] { result = fsIniSetValue(handle, change[0], change[1], change[2], "note"); },
        [&](long, bool refused) {
          EXPECT_EQ(result, 1);
          EXPECT_EQ(valueOf("A", "y") + valueOf("B", "z"), "23");
          if (!refused) {
            EXPECT_EQ(valueOf(change[0], change[1]), change[2]);
          }
        });
  }
}

TEST_F(IniFaults, FileIsReplacedOnlyByTheWholeDocument) {
  const int32_t handle = fsIniReadFile(path.c_str());
  fsIniSetValue(handle, "A", "x", "7", "");
  std::string topics;  // enough to be written in several pieces
  for (int i = 0; i < 2000; ++i) {
    fsIniSetValue(handle, "A", ("topic" + std::to_string(i)).c_str(), "value", "");
    topics += "topic" + std::to_string(i) + " = value\n";
  }
  // Failing in the middle of the text, then only when the file is closed.
  for (bool atClose : {false, true}) {
    writeFault = {atClose ? 1L << 30 : 100, atClose};
    EXPECT_EQ(captureStderr([&] { EXPECT_EQ(fsIniWriteFile(handle), 0); }), "");
    EXPECT_EQ(readFile(path), kText);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
    EXPECT_EQ(iniWalk(handle, ";").substr(0, 6), "A|x|7;");  // the handle keeps its document
  }
  // Then without memory, at each allocation of the write in turn.
  writeFault.closeFails = false;
  const std::string whole = "[A]\nx = 7\ny = 2\n; c\n" + topics + "[B]\nz = 3\n[A]\nw = 4\n";
  int32_t written = -1;
  StreamCatcher err(stderr);
  forEachAllocationFailure(
      [&] {
        err.start();
        written = fsIniWriteFile(handle);
      },
      [&](long k, bool refused) {
        SCOPED_TRACE(k);
        EXPECT_EQ(written, refused ? 0 : 1);
        EXPECT_EQ(readFile(path), refused ? kText : whole);
        EXPECT_EQ(err.stop(), refused ? "Error opening ini file " + path + "\n" : "");
        if (refused) {
          EXPECT_EQ(iniWalk(handle, ";").substr(0, 6), "A|x|7;");
        }
      });
  EXPECT_EQ(writeFault.bytesAccepted, long(readFile(path).size()));
  writeFault = {};
}

TEST_F(IniFaults, LookupsWithoutMemoryForTheirIndexScan) {
  // Without memory for the hash index of a long list, a lookup scans and finds the same match.
  std::string text;
  for (int p = 0; p < 20; ++p) {
    text += "[P" + std::to_string(p) + "]\n";
    for (int t = 0; t < 40; ++t) text += "t" + std::to_string(t) + " = " + std::to_string(p * 100 + t) + "\n";
  }
  writeFile(path, text + "[P19]\nt39 = second\n");
  const int32_t handle = fsIniReadFile(path.c_str());
  char value[16] = "";
  int32_t found = 0;
  long runs = forEachAllocationFailure([&] { found = fsIniGetValue(handle, "P19", "t39", value, nullptr); },
                                       [&](long, bool) {
                                         EXPECT_EQ(found, 1);
                                         EXPECT_STREQ(value, "1939");
                                       });
  EXPECT_GE(runs, 3);  // the index of the paragraphs, then of the lines
}
