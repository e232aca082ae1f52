// SPDX-License-Identifier: MIT
// Cases that once went wrong in the files family, one line each on what did.
// (Linux only: the program is built with the allocation-failure injector.)
// The listing cases concern what happens when memory runs out, so this
// program is built with the allocation-failure injector; its directory
// searches are scripted (the platform's search is wrapped at link time), so
// that the names arrive in the order a case needs.
#include <fskit/files.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "tests/support/alloc_fault.h"
#include "tests/support/test_support.h"

using fskit::platform::FindData;
using fskit::platform::SearchHandle;

namespace {

// The names the next search delivers, in this order.
std::vector<std::string> scriptedNames;
size_t nextName = 0;

bool deliver(FindData *data) {
  if (nextName >= scriptedNames.size()) return false;
  std::strcpy(data->cFileName, scriptedNames[nextName++].c_str());
  return true;
}

int nullTexts(const FsFileSpec &record) {
  int missing = 0;
  for (const char *text : {record.drive, record.directory, record.name, record.extension})
    missing += text == nullptr ? 1 : 0;
  return missing;
}

}  // namespace

extern "C" {

// The wrapped names spell SearchHandle (intptr_t): "l" (long) where pointers
// are 64 bits, "i" (int) where they are 32, as in tests/files/CMakeLists.txt.
#if INTPTR_MAX > INT_MAX
#define FSKIT_HANDLE "l"
#else
#define FSKIT_HANDLE "i"
#endif

SearchHandle wrapFindFirst(const char *, FindData *data)
    __asm__("__wrap__ZN5fskit8platform15FindFirstFileSAEPKcPNS0_8FindDataE");
SearchHandle wrapFindFirst(const char *, FindData *data) {
  nextName = 0;
  return deliver(data) ? 1 : fskit::platform::kNoSearch;
}

int wrapFindNext(SearchHandle, FindData *data)
    __asm__("__wrap__ZN5fskit8platform14FindNextFileSAE" FSKIT_HANDLE "PNS0_8FindDataE");
int wrapFindNext(SearchHandle, FindData *data) { return deliver(data) ? 1 : 0; }

int wrapFindClose(SearchHandle) __asm__("__wrap__ZN5fskit8platform10FindCloseSE" FSKIT_HANDLE);
int wrapFindClose(SearchHandle) { return 1; }

}  // extern "C"

TEST(FilesRegression, ARecordWhoseTextCannotBeCopiedStaysInTheListing) {
  scriptedNames = {"a.x", "b.x", "c.x"};
  FsFileSpec *list = nullptr;
  int32_t count = -1;
  int textRuns = 0;
  fskit::test::forEachSingleAllocationFailure(
      [&] { count = fsReadDir("C:\\data", "*", ".x", &list); },
      [&](long k, bool refused) {
        if (refused && k == 1) {  // the block
          EXPECT_EQ(count, 0);
          EXPECT_EQ(list, nullptr);
          return;
        }
        // A refused copy used to throw the whole listing away (0, list null);
        // the records are all there, the one text that failed is null.
        ASSERT_EQ(count, 3) << k;
        int missing = 0;
        for (int32_t i = 0; i < count; ++i) missing += nullTexts(list[i]);
        EXPECT_EQ(missing, refused ? 1 : 0) << k;
        textRuns += refused ? 1 : 0;
        fsReadDirFree(count, &list);
        EXPECT_EQ(list, nullptr);
      });
  EXPECT_EQ(textRuns, 3 * 4);
}

TEST(FilesRegression, AFullListGrowsForANameItThenSkips) {
  struct Case {
    std::vector<std::string> after;  // names delivered after 100 listed ones
    int32_t count;                   // with the growth refused
  } cases[] = {
      // The block used to grow only for a record to be added, so a skipped
      // name after the 100th record did not need it: it grows for any name.
      {{"."}, 0},
      {{"..", ".hidden"}, 0},
      {{"next"}, 0},
      {{}, 100},  // nothing more: no growth
  };
  for (const Case &c : cases) {
    scriptedNames.clear();
    for (int i = 0; i < 100; ++i) scriptedNames.push_back("f" + std::to_string(i) + ".raw");
    scriptedNames.insert(scriptedNames.end(), c.after.begin(), c.after.end());
    FsFileSpec *list = nullptr;
    // The block and four texts a record come first; the growth is next.
    fskit::test::failOnlyAllocation(1 + 100 * 4 + 1);
    int32_t count = fsReadDir("", "*", nullptr, &list);
    fskit::test::failAllocationFrom(0);
    EXPECT_EQ(count, c.count) << c.after.size();
    EXPECT_EQ(list == nullptr, c.count == 0) << c.after.size();
    fsReadDirFree(count, &list);
  }
}

TEST(FilesRegression, TranslatedErrorTextsStayWithinEightyBytes) {
#if defined(_WIN32)
  GTEST_SKIP() << "the C runtime of Windows has no translated error texts to select by locale";
#else
  // "%d %s" was written unbounded: the Greek text of ELOOP (86 bytes) and the
  // Russian text of ENOSPC (79 bytes, with "28 " 83) ran past the 80 bytes.
  constexpr size_t kErrTextSize = 80, kGuard = 16;
  fskit::test::TempDir dir;
  const std::string loop = dir.file("loop"), other = dir.file("other");
  ASSERT_EQ(symlink(other.c_str(), loop.c_str()), 0);
  ASSERT_EQ(symlink(loop.c_str(), other.c_str()), 0);
  const std::string locked = dir.file("locked");
  fskit::test::writeFile(locked, "x");
  ASSERT_EQ(chmod(locked.c_str(), 0), 0);
  struct Failure {
    int error;
    std::function<int32_t(char *)> make;  // 0 with the error in the text
  };
  std::vector<Failure> failures = {
      {ELOOP, [&](char *text) { FsFile f{}; return fsFileOpen(loop.c_str(), "r", &f, text); }},
      {ENOENT, [&](char *text) { FsFile f{}; return fsFileOpen(dir.file("none").c_str(), "r", &f, text); }},
      {ENAMETOOLONG, [&](char *text) {
         FsFile f{};
         return fsFileOpen(dir.file(std::string(NAME_MAX + 1, 'n')).c_str(), "r", &f, text);
       }},
      // A full device: closing fails to write what the stream holds.
      {ENOSPC, [](char *text) {
         FsFile f{};
         if (fsFileOpen("/dev/full", "w", &f, nullptr) == 0) return -1;
         std::fputs("x", f.stream);
         return fsFileClose(&f, text);
       }},
  };
  if (geteuid() != 0)  // permissions do not stop the superuser
    failures.push_back({EACCES, [&](char *text) {
                          FsFile f{};
                          return fsFileOpen(locked.c_str(), "r", &f, text);
                        }});

  unsetenv("LANGUAGE");  // it would choose the translation over the locale
  std::map<std::string, std::string> eloopText;
  int cut = 0;
  for (const char *locale : {"C", "el_GR.UTF-8", "ru_RU.UTF-8"}) {
    ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr)
        << "locale " << locale << " is missing: run tests/support/ensure_locales.sh, or enable "
        << locale << " in /etc/locale.gen and run locale-gen";
    for (const Failure &failure : failures) {
      SCOPED_TRACE(std::string(locale) + " " + std::to_string(failure.error));
      char text[kErrTextSize + kGuard];
      std::memset(text, '~', sizeof text);
      errno = 0;
      ASSERT_EQ(failure.make(text), 0);
      const std::string full = std::to_string(failure.error) + " " + std::strerror(failure.error);
      EXPECT_EQ(std::string(text + kErrTextSize, kGuard), std::string(kGuard, '~'));
      const size_t length = strnlen(text, kErrTextSize);
      ASSERT_LT(length, kErrTextSize);
      EXPECT_EQ(full.compare(0, length, text), 0) << text;
      if (full.size() < kErrTextSize) {
        EXPECT_EQ(length, full.size());
      } else {
        // Cut at a whole character: no more than one (at most 4 bytes) dropped
        // beyond the 79 bytes, and none split.
        ++cut;
        EXPECT_GE(length, kErrTextSize - 4);
        EXPECT_NE(full[length] & 0xC0, 0x80);
      }
      if (failure.error == ELOOP) eloopText[locale] = full;
    }
  }
  std::setlocale(LC_ALL, "C");
  // The translations were really used, and some of them did not fit.
  EXPECT_NE(eloopText["el_GR.UTF-8"], eloopText["C"]);
  EXPECT_NE(eloopText["ru_RU.UTF-8"], eloopText["C"]);
  EXPECT_GE(cut, 2);
#endif
}

namespace {

// The size files.h gives for a stamp: the digits of the largest year an int
// (and so the asctime text) holds, then mmddhhmmss and "+0000", and the NUL.
const size_t kStampSize = std::to_string(INT_MAX).size() + 10 + 5 + 1;

// Dates the file `path` to `seconds`; false when its file system keeps
// another date (ext4 stops at 2446).
bool dateFile(const std::string &path, std::time_t seconds) {
  const timespec times[2] = {{seconds, 0}, {seconds, 0}};
  struct stat status;
  return utimensat(AT_FDCWD, path.c_str(), times, 0) == 0 &&
         stat(path.c_str(), &status) == 0 && status.st_mtime == seconds;
}

}  // namespace

TEST(FilesRegression, StampsOfFarDatesFitTheDocumentedSize) {
  // The header promised that 20 bytes hold the stamp: a file dated after
  // 9999 (any owner can date a file so) gave 21 and more.
  fskit::test::setTimeZone("UTC0");
  fskit::test::TempDir dir;
  std::time_t now = std::time(nullptr);
  std::tm today;
  ASSERT_TRUE(gmtime_r(&now, &today));
  const int century = (today.tm_year + 1900) / 100 * 100;
  // Where the date after 9999 sticks: here, or in memory (tmpfs).
  std::string path;
  for (const std::string &candidate : {dir.file("dated"), std::string("/dev/shm/fskit-dated-") +
                                                              std::to_string(getpid())}) {
    fskit::test::writeFile(candidate, "x");
    if (dateFile(candidate, 253402300800)) {  // 10000-01-01
      path = candidate;
      break;
    }
    unlink(candidate.c_str());
  }
  if (path.empty()) GTEST_SKIP() << "no file system here keeps a date after the year 9999";

  for (int year : {9999, 10000, 99999, INT_MAX, 5}) {
    std::tm date{};
    date.tm_year = year - 1900;
    date.tm_mon = 11;
    date.tm_mday = 31;
    date.tm_hour = 23;
    date.tm_min = 58;
    date.tm_sec = 59;
    const std::time_t seconds = timegm(&date);
    SCOPED_TRACE(year);
    ASSERT_TRUE(dateFile(path, seconds));
    char text[64];
    std::memset(text, '~', sizeof text);
    double value = -1;
    ASSERT_EQ(fsLastModified(path.c_str(), text, &value), 1);
    // Two-digit years count in the current century.
    const int shown = year <= 99 ? year + century : year;
    char expected[64];
    std::snprintf(expected, sizeof expected, "%4d1231235859+0000", shown);
    EXPECT_STREQ(text, expected);
    EXPECT_LT(std::strlen(text), kStampSize);
    EXPECT_EQ(std::string(text + kStampSize, sizeof text - kStampSize),
              std::string(sizeof text - kStampSize, '~'));
    EXPECT_EQ(value, std::strtod(expected, nullptr));
  }
  // Before the year 0 the date cannot be read back, and says so.
  std::tm before{};
  before.tm_year = -1 - 1900;
  before.tm_mday = 1;
  ASSERT_TRUE(dateFile(path, timegm(&before)));
  char text[64] = "~";
  double value = -1;
  const std::string err = fskit::test::captureStderr(
      [&] { EXPECT_EQ(fsLastModified(path.c_str(), text, &value), 0); });
  EXPECT_EQ(err.rfind("Unable to generate valid input date from: ", 0), 0u) << err;
  EXPECT_STREQ(text, "");
  EXPECT_EQ(value, 0.0);
  unlink(path.c_str());
}

TEST(FilesRegression, StampsAfter2038) {
  // A 32-bit build read file times through a 32-bit time_t: a file dated
  // after January 2038 had no stamp, or one wrapped back to 1901.
  fskit::test::setTimeZone("UTC0");
  fskit::test::TempDir dir;
  const std::string path = dir.file("late");
  fskit::test::writeFile(path, "x");
  ASSERT_TRUE(dateFile(path, static_cast<std::time_t>(2208988800LL)));  // 2040-01-01
  char text[64] = "";
  double value = 0;
  EXPECT_EQ(fsLastModified(path.c_str(), text, &value), 1);
  EXPECT_STREQ(text, "20400101000000+0000");
  EXPECT_EQ(value, 20400101000000.0);
}
