// SPDX-License-Identifier: MIT
// Every family but sort and INI: stateless ones, messages, dates, element-table reloads; beside
// them key codes read from one standard input, whole messages and the first element-table load.
#include <fskit/chemistry.h>
#include <fskit/cmdline.h>
#include <fskit/datetime.h>
#include <fskit/files.h>
#include <fskit/frame.h>
#include <fskit/numformat.h>
#include <fskit/strings.h>
#include <fskit/util.h>
#include <gtest/gtest.h>
#include <utime.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/test_support.h"
#include "tests/threads/stress.h"

using namespace fskit::stress;
using namespace fskit::test;

namespace {

std::string stringsRound(int worker, int round) {
  char text[128];
  std::snprintf(text, sizeof text, "  Worker %d  round %d  \"quoted  part\"  ", worker, round);
  char work[128], upper[128];
  std::strcpy(work, text);
  std::string out = std::to_string(strqcollapse(work)) + ":" + work + "|" + strcpyu(upper, text);
  out += "|" + std::to_string(stridx("round", text));
  out += "|" + std::to_string(strwildcmp("*round ?*", text, '?', '*'));
  out += "|" + std::to_string(stringHash(text, 1021));
  return out;
}

std::string numbersRound(int worker, int round) {
  std::string out;
  char hex[32];
  for (int k = 0; k < 64; ++k) {
    float value = float(worker * 1000 + round * 64 + k) * 0.37f - 50.0f;
    uint8_t vax[4];
    float back = 0;
    encodeVaxFloat(&value, vax);
    decodeVaxFloat(vax, &back);
    std::snprintf(hex, sizeof hex, "%02x%02x%02x%02x=%a;", vax[0], vax[1], vax[2], vax[3],
                  double(back));
    out += hex;
  }
  return out;
}

const Registration strings{{"strings", 4000, stringsRound}};
const Registration numbers{{"numformat", 2000, numbersRound}};

std::string cipherRound(int worker, int round) {
  char text[96];
  std::snprintf(text, sizeof text, "worker %d, round %d: the quick brown fox", worker, round);
  char hex[16 * 12 + 1], back[8 * 12 + 1];
  desEncrypt(text, hex);
  int32_t result = desDecrypt(hex, back);
  return std::string(hex) + " " + std::to_string(result) + " " + back;
}

std::string commandLineRound(int worker, int round) {
  char line[160];
  std::snprintf(line, sizeof line, "copy in%d.dat,out%d.dat /count=%d /name=\"a \"\"b\"\"\" /quiet",
                worker, round, worker * round);
  KwaCmdLnParts parts{};
  int32_t result = kwaCmdLnPrts(line, &parts);
  std::string out = std::to_string(result);
  for (int32_t i = 0; i < parts.nArgs; ++i) out += std::string("|") + parts.args[i] + parts.argEnds[i];
  for (int32_t i = 0; i < parts.nQuals; ++i)
    out += std::string("|/") + parts.qualNames[i] + "=" +
           (parts.qualValues[i] != nullptr ? parts.qualValues[i] : "(none)");
  KwaTagEntry *table = nullptr;
  int32_t count = 0, capacity = 0;
  for (int k = 0; k < 5; ++k) {
    std::string tag = "tag" + std::to_string((worker + k * 7 + round) % 11);
    kwaAddToTbl(tag.c_str(), ("label " + tag).c_str(), &count, &capacity, &table);
  }
  char label[128] = "";
  out += "|" + std::to_string(kwaTagToLabel(count, table, "TAG3", label)) + label;
  std::free(table);
  return out;
}

const Registration cipher{{"cipher", 3000, cipherRound}};
const Registration commandLine{{"cmdline", 3000, commandLineRound}};

TEST(KeyCodeThreads, EveryCallReadsOneWholeKey) {
#if defined(_WIN32)
  GTEST_SKIP() << "piped input gives its bytes as they are on Windows; no two-code keys to split";
#endif
  // Each Up arrow is three bytes, two console codes: a call that got only one would not give 274.
  constexpr int kPerThread = 200;
  std::string input;
  for (int i = 0; i < kThreads * kPerThread; ++i) input += "\x1b[A";
  StdinFrom keys(input);
  std::vector<int> wrong(kThreads, 0);
  onThreads(kThreads, [&wrong](int i) {
    for (int k = 0; k < kPerThread; ++k)
      if (getKeyCode() != FS_KEY_UP) ++wrong[size_t(i)];
  });
  for (int count : wrong) EXPECT_EQ(count, 0);
  EXPECT_EQ(getKeyCode(), 4);  // all read: end of input
}

// Three texts in one message, so that a message split by another thread's output shows up as
// lines out of order.
int32_t sendThreeParts(int worker, int round) {
  char texts[3][64];
  char *pointers[3];
  for (int part = 0; part < 3; ++part) {
    std::snprintf(texts[part], sizeof texts[part], "w%d m%d part%d", worker, round, part);
    pointers[part] = texts[part];
  }
  int32_t count = 3, codes[3] = {1, 1, 1}, aux[3] = {0, 0, 0};
  return fsMessages("stress", &count, codes, aux, pointers);
}

// Worker 0 switches the log file on and off while the others write to it.
std::string messagesRound(int worker, int round) {
  if (worker == 0 && round % 10 == 0)
    fsRegisterMsgLog(round % 20 == 0 ? fsDefaultMsgLogFunction : nullptr);
  fsMessage("stress", 0, 0, "worker %d round %d", worker, round);
  int32_t result = sendThreeParts(worker, round);
  fsDefaultMsgLogFlush();
  bool defaultFunction = fsMsgFunctionIs() == fsDefaultMessageFunction;
  return std::to_string(result) + " " + std::to_string(defaultFunction) + " " +
         std::to_string(fsCheckStop());
}

const Registration messages{{"messages", 1000, messagesRound}};

// Every message has its three parts on consecutive lines, and each of `count` is there once.
void expectWholeMessages(const std::string &output, size_t count) {
  std::istringstream in(output);
  std::set<std::string> seen;
  for (std::string first; std::getline(in, first);) {
    int worker = -1, round = -1;
    ASSERT_EQ(std::sscanf(first.c_str(), "stress: w%d m%d part0", &worker, &round), 2) << first;
    std::string prefix = "stress: w" + std::to_string(worker) + " m" + std::to_string(round);
    for (const char *part : {" part1", " part2"}) {
      std::string line;
      std::getline(in, line);
      EXPECT_EQ(line, prefix + part);
    }
    EXPECT_TRUE(seen.insert(first).second) << first;
  }
  EXPECT_EQ(seen.size(), count);
}

TEST(MessageThreads, MessagesArriveWholeOnTheScreenAndInTheLog) {
  TempDir dir;
  ChangeDir here(dir.path());
  constexpr int kPerThread = 1000;
  fsRegisterMsgLog(fsDefaultMsgLogFunction);
  std::string screen = captureStdout([] {
    onThreads(kThreads, [](int worker) {
      for (int round = 0; round < kPerThread; ++round) sendThreeParts(worker, round);
    });
  });
  fsRegisterMsgLog(nullptr);  // closes the log file
  expectWholeMessages(screen, kThreads * kPerThread);
  expectWholeMessages(readText(dir.file("fsmessage.log")), kThreads * kPerThread);
}

std::string datedFile(int worker) { return scratchDir() + "/dated_" + std::to_string(worker); }

void makeDatedFiles() {
  // Local time with a daylight-saving rule, so that conversions depend on it.
  setTimeZone("EST5EDT,M3.2.0,M11.1.0");
  for (int worker = 0; worker < kThreads; ++worker) {
    writeFile(datedFile(worker), "x");
    utimbuf times{};
    times.actime = times.modtime = 900000000 + worker * 86400 * 37;
    ASSERT_EQ(utime(datedFile(worker).c_str(), &times), 0);
  }
}

std::string datesRound(int worker, int round) {
  std::string out;
  char text[64];
  long long seconds = 800000000LL + (worker * 131 + round) % 500 * 7919LL * 3600;
  std::string input = std::to_string(seconds);
  for (int layout : {4, 6, 8, 10}) {
    text[0] = '\0';  // a failed conversion leaves the output as it was
    fsDateTime(9, input.c_str(), layout, text, "", 0);
    out += std::string(text) + "|";
  }
  // A calendar date to seconds and back.
  std::snprintf(text, sizeof text, "%d/%d/%d", 1 + round % 12, 1 + (worker * 3 + round) % 28,
                1950 + round % 90);
  char stamp[64] = "", back[64] = "";
  fsDateTime(0, text, 9, stamp, "", 0);
  fsDateTime(9, stamp, 3, back, "", 0);
  out += std::string(stamp) + "|" + back + "|" + std::to_string(fsWeekday(1950 + round % 90, 3, 7));
  double value = 0;
  fsLastModified(datedFile(worker).c_str(), text, &value);
  out += std::string("|") + text;
  // The text is per thread: ThreadSanitizer reports a shared one.
  out += std::strlen(fsNowAscTime()) == 24 ? "|now" : "|bad now";
  return out;
}

const Registration dates{{"dates", 1500, datesRound, makeDatedFiles}};

const char *const kFormulas[] = {"C6H12O6", "C8H10N4O2", "CH3CH2OH", "C254H377N65O75S6",
                                 "Na.Cl",   "13C C5H12O6", "C2H5Xx", "c6h6"};
constexpr int kFormulaCount = int(std::size(kFormulas));

std::string shippedTable() { return std::string(FSKIT_SOURCE_DIR) + "/data/kw_elements.tbl"; }
// The same with another average mass for carbon.
std::string changedTable() { return scratchDir() + "/changed_elements.tbl"; }

// Formula k parsed, or for k = kFormulaCount the record of carbon.
std::string resultOf(int k) {
  char line[400];
  if (k == kFormulaCount) {
    FsElementRecord record{};
    int32_t index = fsFindElemInTbl("C");
    int32_t found = fsGetElementInfo(index, &record);
    std::snprintf(line, sizeof line, "%d %d %.6f %s", index, found, record.averageMass,
                  record.symbol);
    return line;
  }
  char text[256];
  int32_t nominal = 0;
  double mono = 0, average = 0, rdb = 0;
  int32_t result = fsTblParseMF(kFormulas[k], 0, 0, text, &nominal, &mono, &average, &rdb, 0,
                                nullptr, nullptr, nullptr, nullptr);
  std::snprintf(line, sizeof line, "%d %s %d %.9f %.9f %.1f", result, result > 0 ? text : "",
                nominal, mono, average, rdb);
  return line;
}

// What each result is under either table.
std::vector<std::string> underShipped, underChanged;

void prepareTables() {
  std::string text = readFile(shippedTable());
  size_t carbon = text.find("\nC       6  12.011 ");
  ASSERT_NE(carbon, std::string::npos);
  text.replace(carbon + 12, 6, "12.111");
  writeFile(changedTable(), text);
  for (auto [table, results] :
       {std::pair{changedTable(), &underChanged}, std::pair{shippedTable(), &underShipped}}) {
    ASSERT_EQ(fsLoadElemTable(table.c_str()), 1);
    for (int k = 0; k <= kFormulaCount; ++k) results->push_back(resultOf(k));
  }
  ASSERT_NE(underShipped[0], underChanged[0]);
}

// Worker 0 reloads on every round, alternating between the two tables.
std::string elementsRound(int worker, int round) {
  if (worker == 0) {
    const std::string &table = round % 2 == 0 ? changedTable() : shippedTable();
    return "load " + std::to_string(fsLoadElemTable(table.c_str()));
  }
  size_t k = size_t((worker + round) % (kFormulaCount + 1));
  std::string result = resultOf(int(k));
  return result == underShipped[k] || result == underChanged[k] ? "whole" : result;
}

const Registration elements{{"elements", 3000, elementsRound, prepareTables}};

TEST(ElementThreads, TheFirstLoadServesEveryThread) {
  TempDir dir;
  writeFile(dir.file("kw_elements.tbl"), readFile(shippedTable()));
  ChangeDir here(dir.path());
  ASSERT_EQ(fsInitElemTable(0, 0), 1);  // no table present
  ASSERT_EQ(fsElementTableCount(), 0);
  std::vector<int32_t> found(kThreads, -2);
  onThreads(kThreads, [&found](int i) { found[size_t(i)] = fsFindElemInTbl("N"); });
  EXPECT_GT(fsElementTableCount(), 0);
  for (int32_t index : found) EXPECT_EQ(index, fsFindElement("N", nullptr));
}

}  // namespace
