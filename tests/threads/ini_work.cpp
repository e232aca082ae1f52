// SPDX-License-Identifier: MIT
// INI workloads: one document read by all workers and walked by one, own documents;
// then readers on indexes still behind, and a writer beside readers and walkers.
#include <fskit/ini.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <latch>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

#include "ini/state.h"
#include "tests/support/ini_walk.h"
#include "tests/support/test_support.h"
#include "tests/threads/stress.h"

namespace {

// Enough paragraphs and topics that lookups go through the hash index.
constexpr int kParagraphs = 300;
constexpr int kTopics = 24;

std::string expectedValue(const std::string &paragraph, const std::string &topic) {
  return paragraph + "." + topic;
}

// The value fsIniGetValue finds, or "-".
std::string valueOf(int32_t handle, const std::string &paragraph, const std::string &topic) {
  char value[1100];
  return fsIniGetValue(handle, paragraph.c_str(), topic.c_str(), value, nullptr) == 1 ? value : "-";
}

int32_t openRetrying(const std::string &path, bool read) {
  for (;;) {
    int32_t handle = read ? fsIniReadFile(path.c_str()) : fsIniNewFile(path.c_str());
    if (handle != 0) return handle;
    std::this_thread::yield();  // all slots in use for now
  }
}

int32_t shared = 0;

// "S<p>" has "k<t>" = "S<p>.k<t>", then a second "k0"; a second "S3" comes last. Lookups find
// neither second one.
void setUpShared() {
  std::string text;
  for (int p = 0; p < kParagraphs; ++p) {
    std::string name = "S" + std::to_string(p);
    text += "[" + name + "]\n";
    for (int t = 0; t < kTopics; ++t)
      text += "k" + std::to_string(t) + " = " + expectedValue(name, "k" + std::to_string(t)) + "\n";
    text += "k0 = second\n";
  }
  const std::string path = fskit::stress::scratchDir() + "/shared.ini";
  fskit::test::writeFile(path, text + "[S3]\nk1 = second\n");
  shared = openRetrying(path, true);
}

// "value;" for a spread of lookups through both ways of asking; "k24" has no value: "-". Worker
// 0 first walks the document, the only walk in the process, beside the other workers' readers.
std::string sharedReads(int worker, int round) {
  if (worker == 0 && round < 10) return fskit::test::iniWalk(shared, ";");
  std::string out;
  for (int i = 0; i < 40; ++i) {
    std::string paragraph = "S" + std::to_string((worker * 7 + round * 3 + i) % kParagraphs);
    std::string topic = "k" + std::to_string((worker + round * 5 + i * 11) % (kTopics + 1));
    char *copy = fskit::ini::copyValueOf(shared, paragraph.c_str(), topic.c_str());
    out += copy != nullptr ? copy : "-";
    if (copy != nullptr && valueOf(shared, paragraph, topic) != copy) out += "(differs)";
    std::free(copy);
    out += ";";
  }
  return out;
}

// Each worker sets, writes and reads back a document of its own. At most six are open at once,
// so that with the shared one and another family's the slots suffice.
std::counting_semaphore<6> ownSlots{6};

std::string ownDocument(int worker, int round) {
  std::string path = fskit::stress::scratchDir() + "/own" + std::to_string(worker) + ".ini";
  std::string tag = std::to_string(worker) + "/" + std::to_string(round);
  auto name = [](char kind, int n) { return kind + std::to_string(n); };
  ownSlots.acquire();
  int32_t handle = openRetrying(path, false);
  for (int p = 0; p < 18; ++p)
    for (int t = 0; t < 18; ++t)
      fsIniSetValue(handle, name('P', p).c_str(), name('t', t).c_str(),
                    (tag + ":" + std::to_string(p * t)).c_str(), t == 0 ? "first" : "");
  std::string out = valueOf(handle, "P17", "t17");
  out += fsIniWriteFile(handle) == 1 ? " written;" : " not written;";
  handle = openRetrying(path, true);
  for (int i = 0; i < 18; ++i)
    out += valueOf(handle, name('P', (i * 5 + round) % 18), name('t', (i * 7 + worker) % 18)) + ";";
  fsIniReleaseFile(handle);
  ownSlots.release();
  return out;
}

const fskit::stress::Registration sharedWork{{"ini shared reads", 150, sharedReads, setUpShared}};
const fskit::stress::Registration ownWork{{"ini own documents", 30, ownDocument}};

// Readers starting at once on long lists just read all find the indexes behind, and all must
// get the first matches.
TEST(IniThreads, ReadersAtOnceOnIndexesBehind) {
  constexpr int kLong = 3000;
  std::string paragraphs, last = "[Last]\n";
  for (int i = 0; i < kLong; ++i) {
    std::string n = std::to_string(i);
    paragraphs += "[P" + n + "]\nt = " + n + "\n";
    last += "k" + n + " = " + n + "\n";
  }
  const std::string path = fskit::stress::scratchDir() + "/behind.ini";
  fskit::test::writeFile(path, paragraphs + last + "k0 = second\n[P0]\nt = second\n");
  int32_t handle = openRetrying(path, true);

  std::latch together(4);
  std::atomic<long> bad{0};
  auto reader = [&](int seed) {
    together.arrive_and_wait();
    for (int i = 0; i < 200; ++i) {
      std::string n = std::to_string((seed * 13 + i * 101) % kLong);
      bad += valueOf(handle, "Last", "k" + n) != n;
      bad += valueOf(handle, "P" + n, "t") != n;
    }
  };
  fskit::stress::onThreads(4, reader);
  fsIniReleaseFile(handle);
  EXPECT_EQ(bad.load(), 0);
}

// A writer sets one topic to one-letter values of very different lengths and keeps adding
// topics and paragraphs; readers and two walkers sharing the one walk must only get values
// that are whole: one of those written, or the unchanging value of another topic.
TEST(IniThreads, ReadersNeverSeeATornValue) {
  const std::vector<std::string> written = {std::string(1000, 'a'), "b", std::string(300, 'c'),
                                            std::string(17, 'd'), std::string(700, 'e')};
  auto isWritten = [&](const std::string &value) { return std::ranges::count(written, value) > 0; };
  int32_t handle = openRetrying(fskit::stress::scratchDir() + "/torn.ini", false);
  auto set = [handle](const std::string &paragraph, const std::string &topic) {
    fsIniSetValue(handle, paragraph.c_str(), topic.c_str(),
                  expectedValue(paragraph, topic).c_str(), "");
  };
  for (int p = 0; p < 20; ++p)
    for (int t = 0; t < 20; ++t) set("Q" + std::to_string(p), "f" + std::to_string(t));
  fsIniSetValue(handle, "Q0", "v", written[0].c_str(), "");

  std::atomic<bool> writing{true};
  std::atomic<int> started{0};
  std::atomic<long> bad{0}, reads{0}, walked{0};
  auto writer = [&] {
    while (started < 5) std::this_thread::yield();  // the three readers and the two walkers
    for (int i = 0; i < 3000 || reads < 20000; ++i) {
      fsIniSetValue(handle, "Q0", "v", written[size_t(i) % written.size()].c_str(), "");
      if (i % 10 == 0 && i < 3000) {
        set("Q0", "n" + std::to_string(i));
        set("R" + std::to_string(i), "f0");
      }
    }
    writing = false;
  };
  auto reader = [&](int seed) {
    ++started;
    for (int i = seed; writing; ++i) {
      std::string paragraph = "Q" + std::to_string(i % 20), topic = "f" + std::to_string(i % 19);
      bad += !isWritten(valueOf(handle, "Q0", "v"));
      char *copy = fskit::ini::copyValueOf(handle, "Q0", "v");
      bad += copy == nullptr || !isWritten(copy);
      std::free(copy);
      bad += valueOf(handle, paragraph, topic) != expectedValue(paragraph, topic);
      ++reads;
    }
  };
  auto walker = [&] {
    char paragraph[64], topic[64], value[1100];
    ++started;
    while (writing)
      for (int32_t first = 1; fsIniNext(first, handle, paragraph, topic, value) == 1; first = 0) {
        ++walked;
        if (std::string(topic) == "v" ? !isWritten(value)
                                      : value != expectedValue(paragraph, topic))
          ++bad;
      }
  };
  fskit::stress::onThreads(6, [&](int i) { i == 0 ? writer() : i < 4 ? reader(i * 7) : walker(); });
  fsIniReleaseFile(handle);
  EXPECT_EQ(bad.load(), 0);
  EXPECT_GT(reads.load(), 0);
  EXPECT_GT(walked.load(), 0);
}

}  // namespace
