// SPDX-License-Identifier: MIT
// Path helpers, file records, times and sizes; directory listing, creation and removal, and the
// directory services beneath them, on real temporary directories; fskit ls.
#include <fskit/files.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "platform/file_offset.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

using namespace fskit::test;
using Records = std::vector<std::string>;

TEST(FileNames, ParseAndAppendSubDirUseOnlyBackslashes) {
  struct Case { const char *path, *directory, *name, *extension; };
  const Case cases[] = {{"C:\\data\\run.tar.gz", "C:\\data\\", "run", ".gz"},
                        {"run", "", "run", ""},
                        {".cfg", "", "", ".cfg"},
                        {"a.b\\c", "a.b\\", "c", ""},
                        {"/tmp/x.y/z", "", "/tmp/x", ".y/z"}};
  for (const Case &c : cases) {
    char directory[64] = "#", name[64] = "#", extension[64] = "#";
    fsFileParse(c.path, directory, name, extension);
    EXPECT_EQ(std::string(directory) + "|" + name + "|" + extension,
              std::string(c.directory) + "|" + c.name + "|" + c.extension);
  }
  char extension[16] = "#";
  fsFileParse("a\\b.c", nullptr, nullptr, extension);
  EXPECT_STREQ(extension, ".c");

  struct Append { const char *directory, *sub, *result; };
  for (Append c : {Append{"", "raw", "\\raw\\"}, Append{"C:\\data", "raw", "C:\\data\\raw\\"},
                   Append{"C:\\data\\", "raw", "C:\\data\\raw\\"}, Append{"d", "r\\", "d\\r\\\\"}}) {
    char buffer[64];
    std::strcpy(buffer, c.directory);
    EXPECT_EQ(fsAppendSubDir(buffer, c.sub), 1);
    EXPECT_STREQ(buffer, c.result);
  }
}

TEST(FileRecords, OpenAndCloseReportErrorsAsNumberAndSystemText) {
  TempDir dir;
  FsFile file{};
  char error[128] = "";
  // (Every error path and its text: ErrorTextsStayWithinEightyBytesInEveryPathAndLanguage.)
  EXPECT_EQ(fsFileOpen(dir.file("missing/file").c_str(), "r", &file, error), 0);
  EXPECT_EQ(error, std::to_string(ENOENT) + " " + std::strerror(ENOENT));
  EXPECT_TRUE(file.stream == nullptr && file.name == nullptr);
  std::string first = dir.file("first"), second = dir.file("second");
  ASSERT_EQ(fsFileOpen(first.c_str(), "w", &file, nullptr), 1);
  std::fclose(file.stream);
  file.user = 7;
  ASSERT_EQ(fsFileOpen(second.c_str(), "w", &file, error), 1);
  EXPECT_STREQ(file.name, second.c_str());  // the earlier name replaced
  EXPECT_EQ(file.user, 0);
  EXPECT_EQ(fsFileClose(&file, error), 1);
  EXPECT_TRUE(file.stream == nullptr && file.name == nullptr && file.user == 0);
  EXPECT_EQ(fsFileClose(&file, error), 0);  // nothing to close, stays zeroed
  EXPECT_EQ(file.name, nullptr);
}

TEST(FileRecords, ExistsAndSize) {
  TempDir dir;
  std::string path = dir.file("data");
  writeFile(path, std::string(1234, 'x'));
  EXPECT_EQ(fsFileExists(path.c_str()) + fsFileExists(dir.path().c_str()), 2);
  EXPECT_EQ(fsFileExists(dir.file("none").c_str()), 0);

  FILE *stream = std::fopen(path.c_str(), "rb");
  std::fseek(stream, 600, SEEK_SET);
  EXPECT_EQ(fsFileSize(stream), 1234);
  EXPECT_EQ(std::ftell(stream), 0);
  std::fclose(stream);
  int ends[2];
#if defined(_WIN32)
  ASSERT_EQ(_pipe(ends, 4096, _O_BINARY), 0);
#else
  ASSERT_EQ(pipe(ends), 0);
#endif
  FILE *unseekable = fdopen(ends[0], "r");
  EXPECT_EQ(fsFileSize(unseekable), -1);
  std::fclose(unseekable);
  close(ends[1]);
  // Past 4 GiB (a sparse file): too large for the result, not wrapped to 1234.
  FILE *large = std::fopen(dir.file("large").c_str(), "w+b");
  ASSERT_NE(large, nullptr);
  const fskit::platform::FileOffset last = (fskit::platform::FileOffset(1) << 32) + 1233;
  ASSERT_EQ(fskit::platform::seekFile(large, last, SEEK_SET), 0);
  ASSERT_EQ(std::fputc('x', large), 'x');
  EXPECT_EQ(fsFileSize(large), -1);
  EXPECT_EQ(fskit::platform::tellFile(large), 0);
  std::fclose(large);
}

TEST(FileRecords, LastModifiedIsTheLocalTimeStamp) {
  setTimeZone("EST5");
  TempDir dir;
  std::string path = dir.file("stamped");
  writeFile(path, "x");
  utimbuf times{946702799, 946702799};  // date -u -d "2000-01-01 04:59:59" +%s
  ASSERT_EQ(utime(path.c_str(), &times), 0);
  char text[32];
  double value = -1;
  EXPECT_EQ(fsLastModified(path.c_str(), text, &value), 1);
  EXPECT_STREQ(text, "19991231235959+0000");
  EXPECT_EQ(value, 19991231235959.0);
  EXPECT_EQ(fsLastModified(dir.file("none").c_str(), text, &value), 0);
  EXPECT_EQ(text + std::to_string(value), "0.000000");
}

TEST(FileRecords, ErrorTextsStayWithinEightyBytesInEveryPathAndLanguage) {
#if defined(_WIN32)
  GTEST_SKIP() << "the C runtime of Windows has no translated error texts to select by locale";
#else
  // Each error path of fsFileOpen and fsFileClose, in C and two locales whose texts run longer.
  // "%d %s" ran unbounded past the 80 bytes: Greek ELOOP (86 bytes), Russian "28 " ENOSPC (83).
  constexpr size_t kErrTextSize = 80, kGuard = 16;
  TempDir dir;
  const std::string loop = dir.file("loop"), other = dir.file("other");
  ASSERT_EQ(symlink(other.c_str(), loop.c_str()), 0);
  ASSERT_EQ(symlink(loop.c_str(), other.c_str()), 0);
  // Fails with `error` (ELOOP, EINVAL: a null path, ENOSPC): 0, with the error in `text`.
  auto fail = [&](int error, char *text) {
    FsFile f{};
    if (error != ENOSPC) return fsFileOpen(error == ELOOP ? loop.c_str() : nullptr, "r", &f, text);
    // A full device: closing fails to write what the stream holds.
    if (fsFileOpen("/dev/full", "w", &f, nullptr) == 0) return -1;
    std::fputs("x", f.stream);
    return fsFileClose(&f, text);
  };

  unsetenv("LANGUAGE");  // it would choose the translation over the locale
  int cut = 0;
  for (const char *locale : {"C", "el_GR.UTF-8", "ru_RU.UTF-8"}) {
    ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr)
        << "locale " << locale << " is missing: run tests/support/ensure_locales.sh";
    for (int error : {ELOOP, EINVAL, ENOSPC}) {
      SCOPED_TRACE(std::string(locale) + " " + std::to_string(error));
      char text[kErrTextSize + kGuard];
      std::memset(text, '~', sizeof text);
      errno = 0;
      ASSERT_EQ(fail(error, text), 0);
      const std::string full = std::to_string(error) + " " + std::strerror(error);
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
    }
  }
  std::setlocale(LC_ALL, "C");
  // The translations were really used: every C text fits, some of theirs did not.
  EXPECT_GE(cut, 2);
#endif
}

#if !defined(_WIN32)
TEST(FileRecords, StampsOfFarDatesFitTheDocumentedSize) {
  setTimeZone("UTC0");
  // The size files.h gives: the digits of the largest year an int holds, mmddhhmmss, "+0000", NUL.
  const size_t kStampSize = std::to_string(INT_MAX).size() + 10 + 5 + 1;
  // Dates a file; false when its file system keeps another date (ext4 stops at 2446).
  auto dateFile = [](const std::string &path, std::time_t seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    struct stat status;
    return utimensat(AT_FDCWD, path.c_str(), times, 0) == 0 &&
           stat(path.c_str(), &status) == 0 && status.st_mtime == seconds;
  };
  TempDir dir;
  std::time_t now = std::time(nullptr);
  std::tm today;
  ASSERT_TRUE(gmtime_r(&now, &today));
  const int century = (today.tm_year + 1900) / 100 * 100;
  // Where the date after 9999 sticks: here, or in memory (tmpfs).
  std::string path;
  for (const std::string &candidate : {dir.file("dated"), std::string("/dev/shm/fskit-dated-") +
                                                              std::to_string(getpid())}) {
    writeFile(candidate, "x");
    if (dateFile(candidate, 253402300800)) {  // 10000-01-01
      path = candidate;
      break;
    }
    unlink(candidate.c_str());
  }
  if (path.empty()) GTEST_SKIP() << "no file system here keeps a date after the year 9999";

  // 2040: a 32-bit time_t gave no stamp or one of 1901. After 9999: promised 20 bytes, took 21.
  for (int year : {2040, 9999, 10000, 99999, INT_MAX, 5}) {
    std::tm date{};
    date.tm_year = year - 1900;
    date.tm_mon = 11;
    date.tm_mday = 31;
    const std::time_t seconds = timegm(&date) + 23 * 3600 + 58 * 60 + 59;
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
  const std::string err = captureStderr(
      [&] { EXPECT_EQ(fsLastModified(path.c_str(), text, &value), 0); });
  EXPECT_EQ(err.rfind("Unable to generate valid input date from: ", 0), 0u) << err;
  EXPECT_STREQ(text, "");
  EXPECT_EQ(value, 0.0);
  unlink(path.c_str());
}
#endif

namespace {

#if defined(_WIN32)
constexpr bool kMatchIgnoresCase = true;  // Windows matches names without regard to case
#else
constexpr bool kMatchIgnoresCase = false;
#endif

std::string withBackslashes(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

// "directory|drive" of the records of a listing of `path` + "\": the drive is the text up to the
// first colon, which only a Windows path ("C:\...") has.
std::string partsOf(const std::string &path) {
  size_t drive = path.find(':') + 1;  // 0 when there is none
  return path.substr(drive) + "\\|" + path.substr(0, drive);
}

// The records as "name|extension|directory|drive", sorted.
Records list(const std::string &directory, const std::string &namePattern,
             const char *extPattern = nullptr) {
  FsFileSpec *found = nullptr;
  int32_t count = fsReadDir(directory.c_str(), namePattern.c_str(), extPattern, &found);
  Records records;
  for (int32_t i = 0; i < count; ++i)
    records.push_back(std::string(found[i].name) + "|" + found[i].extension + "|" +
                      found[i].directory + "|" + found[i].drive);
  std::sort(records.begin(), records.end());
  EXPECT_NE(found, nullptr);  // an empty block when nothing was found
  fsReadDirFree(count, &found);
  EXPECT_EQ(found, nullptr);
  return records;
}

}  // namespace

TEST(ReadDir, PatternsSelectNamesSplitAtTheFirstDot) {
  TempDir dir;
  for (const char *name : {"a.raw", "b.RAW", "notes", ".hidden", "run.tar.gz"}) writeFile(dir.file(name), "");
  std::filesystem::create_directory(dir.file("sub.d"));
  std::string at = "|" + partsOf(dir.path());
  const Records raw =
      kMatchIgnoresCase ? Records{"a|raw" + at, "b|RAW" + at} : Records{"a|raw" + at};
  struct Case { const char *name, *ext; Records records; };
  const Case cases[] = {
      {"*", nullptr, {"a|raw" + at, "b|RAW" + at, "notes|" + at, "run|tar.gz" + at, "sub|d" + at}},
      {"*", ".raw", raw},
      {"?", "", {"a|raw" + at, "b|RAW" + at}},
      {"n*", nullptr, {"notes|" + at}},
      {"*.tar", ".gz", {"run|tar.gz" + at}},
      {"zzz", nullptr, {}},
  };
  for (const Case &c : cases) EXPECT_EQ(list(dir.path(), c.name, c.ext), c.records) << c.name;
  // Backslashes separate as well as slashes; the records keep the text given.
  std::string backslashed = withBackslashes(dir.path());
  EXPECT_EQ(list(backslashed + "\\", "a", ".raw"), Records{"a|raw|" + partsOf(backslashed)});
  ChangeDir here(dir.path());
  EXPECT_EQ(list("", "*", ".raw"),
            (kMatchIgnoresCase ? Records{"a|raw||", "b|RAW||"} : Records{"a|raw||"}));
}

TEST(ReadDir, GrowsPastAHundredRecordsAndKeepsToItsLimits) {
  TempDir dir;
  for (int i = 0; i < 201; ++i) writeFile(dir.file("f" + std::to_string(i) + ".dat"), "");
  Records records = list(dir.path(), "f*", ".dat");
  EXPECT_EQ(std::set<std::string>(records.begin(), records.end()).size(), 201u);
  EXPECT_EQ(list(dir.path(), "f1??").size(), 100u);

  TempDir other;
  writeFile(other.file(std::string(100, 'b') + "." + std::string(100, 'e')), "");
  EXPECT_EQ(list(other.path(), "*"),
            Records{std::string(79, 'b') + "|" + std::string(79, 'e') + "|" + partsOf(other.path())});
  for (const std::string &directory :  // too long; not a directory; missing
       {std::string(80, 'd') + ":", other.path() + std::string(300, '/'),
        dir.file("f1.dat"), dir.file("missing")})
    EXPECT_EQ(list(directory, "*"), Records{}) << directory;
  EXPECT_EQ(list(dir.path(), std::string(300, '*')), Records{});
  EXPECT_EQ(fsReadDir(dir.path().c_str(), "*", nullptr, nullptr), 0);
#if !defined(_WIN32)
  if (geteuid() != 0) {  // permissions do not stop root
    chmod(dir.path().c_str(), 0);
    EXPECT_EQ(list(dir.path(), "*"), Records{});
    chmod(dir.path().c_str(), 0700);
  }
#endif
}

TEST(Directories, MakeAndRemove) {
  TempDir dir;
  std::string made = dir.file("made"), inner = withBackslashes(dir.file("made/inner"));
  EXPECT_EQ(fsMakeDir(made.c_str()), 1);
  EXPECT_EQ(fsMakeDir(made.c_str()), 1);  // already there
  EXPECT_EQ(fsMakeDir(inner.c_str()), 1);
  EXPECT_TRUE(std::filesystem::is_directory(dir.file("made/inner")));
  EXPECT_EQ(fsMakeDir(dir.file("missing/child").c_str()), 0);
  writeFile(dir.file("plain"), "");
  EXPECT_EQ(fsMakeDir(dir.file("plain").c_str()), 0);

  EXPECT_EQ(fsRemoveDirectory(made.c_str()), 0);  // not empty
  EXPECT_EQ(fsRemoveDirectory(inner.c_str()) + fsRemoveDirectory(made.c_str()), 2);
  EXPECT_FALSE(fileExists(made));
  EXPECT_EQ(fsRemoveDirectory(made.c_str()), 0);
  EXPECT_EQ(fsRemoveDirectory((dir.path() + std::string(300, '/')).c_str()), 0);
}

// (Its patterns: ReadDir.PatternsSelectNamesSplitAtTheFirstDot, whose listings it makes.)
TEST(DirectoryServices, SearchSurvivesAVanishingDirectory) {
  namespace platform = fskit::platform;
  TempDir dir;
  for (const char *name : {"a", "b"}) writeFile(dir.file(name), "");
  platform::FindData data{};
  platform::SearchHandle handle = platform::FindFirstFileSA((dir.path() + "/*").c_str(), &data);
  ASSERT_NE(handle, platform::kNoSearch);
  std::error_code refused;  // Windows refuses while the search is open
  std::filesystem::remove_all(dir.path(), refused);
  while (platform::FindNextFileSA(handle, &data)) {
  }
  EXPECT_NE(platform::FindCloseS(handle), 0);
}

TEST(LsTool, SortedPathsWithDirectoriesMarked) {
  TempDir dir;
  for (const char *sub : {"sub", "b.d"}) std::filesystem::create_directory(dir.file(sub));
  for (const char *name : {"b.txt", "a.raw", "Z", ".hidden"}) writeFile(dir.file(name), "");
  auto listed = runTool({"ls", "."}, "", dir.path());
  EXPECT_EQ(listed.status, 0) << listed.err;
  EXPECT_EQ(listed.out,
            "path\tname\textension\n./Z\tZ\t\n./a.raw\ta\traw\n./b.d/\tb\td\n"
            "./b.txt\tb\ttxt\n./sub/\tsub\t\n");
  // The directory as given, one '/' added; patterns still choose.
  EXPECT_EQ(runTool({"ls", "./", "b"}, "", dir.path()).out,
            "path\tname\textension\n./b.d/\tb\td\n./b.txt\tb\ttxt\n");
  std::string jsonPath;  // JSON escapes the backslashes of a Windows path
  for (char c : dir.path()) jsonPath += c == '\\' ? std::string("\\\\") : std::string(1, c);
  EXPECT_EQ(runTool({"ls", "--json", dir.path(), "s*"}).out,
            "{\"path\":\"" + jsonPath + "/sub/\",\"name\":\"sub\",\"extension\":\"\"}\n");
  auto missing = runTool({"ls", "--json", dir.file("none")});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.out, "");
  EXPECT_EQ(missing.err, "fskit ls: cannot read directory " + dir.file("none") +
                             ": No such file or directory\n");
}
