// Path helpers, file records, file times and sizes.
#include <fskit/files.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "tests/support/test_support.h"

using fskit::test::TempDir;
using fskit::test::writeFile;

TEST(FileNames, ParseSplitsAtBackslashesAndDots) {
  struct Case { const char *path, *directory, *name, *extension; };
  const Case cases[] = {
      {"C:\\data\\run.tar.gz", "C:\\data\\", "run", ".gz"},
      {"run", "", "run", ""},
      {".cfg", "", "", ".cfg"},
      {"a.b\\c", "a.b\\", "c", ""},
      {"C:file.txt", "", "C:file", ".txt"},
      {"/tmp/x.y/z", "", "/tmp/x", ".y/z"},
      {"\\dir\\", "\\dir\\", "", ""},
  };
  for (const Case &c : cases) {
    char directory[64] = "#", name[64] = "#", extension[64] = "#";
    fsFileParse(c.path, directory, name, extension);
    EXPECT_STREQ(directory, c.directory) << c.path;
    EXPECT_STREQ(name, c.name) << c.path;
    EXPECT_STREQ(extension, c.extension) << c.path;
  }
  char extension[16] = "#";
  fsFileParse("a\\b.c", nullptr, nullptr, extension);
  EXPECT_STREQ(extension, ".c");
  fsFileParse(nullptr, nullptr, nullptr, extension);
  EXPECT_STREQ(extension, "");
}

TEST(FileNames, AppendSubDirEndsInABackslash) {
  struct Case { const char *directory, *sub, *result; };
  const Case cases[] = {{"", "raw", "\\raw\\"},
                        {"C:\\data", "raw", "C:\\data\\raw\\"},
                        {"C:\\data\\", "raw", "C:\\data\\raw\\"},
                        {"data", "raw\\", "data\\raw\\\\"},
                        {"data", nullptr, "data\\\\"}};
  for (const Case &c : cases) {
    char buffer[64];
    std::strcpy(buffer, c.directory);
    EXPECT_EQ(fsAppendSubDir(buffer, c.sub), 1);
    EXPECT_STREQ(buffer, c.result) << c.directory;
  }
}

TEST(FileRecords, OpenAndCloseReportErrorsAsNumberAndSystemText) {
  TempDir dir;
  FsFile file{};
  char error[128] = "";
  std::string missing = dir.file("missing/file");
  EXPECT_EQ(fsFileOpen(missing.c_str(), "r", &file, error), 0);
  EXPECT_EQ(std::string(error), std::to_string(ENOENT) + " " + std::strerror(ENOENT));
  EXPECT_EQ(file.stream, nullptr);
  EXPECT_EQ(file.name, nullptr);

  std::string first = dir.file("first"), second = dir.file("second");
  file.user = 7;
  ASSERT_EQ(fsFileOpen(first.c_str(), "w", &file, nullptr), 1);
  EXPECT_EQ(file.user, 0);
  EXPECT_STREQ(file.name, first.c_str());
  std::fclose(file.stream);
  ASSERT_EQ(fsFileOpen(second.c_str(), "w", &file, error), 1);  // replaces the name
  EXPECT_STREQ(file.name, second.c_str());
  file.user = 3;
  EXPECT_EQ(fsFileClose(&file, error), 1);
  EXPECT_EQ(file.stream, nullptr);
  EXPECT_EQ(file.name, nullptr);
  EXPECT_EQ(file.user, 0);
  EXPECT_EQ(fsFileClose(&file, error), 0);  // nothing to close, stays zeroed
  EXPECT_EQ(file.name, nullptr);

  // A directory cannot be opened for writing.
  EXPECT_EQ(fsFileOpen(dir.path().c_str(), "w", &file, error), 0);
  EXPECT_EQ(std::string(error), std::to_string(EISDIR) + " " + std::strerror(EISDIR));
  EXPECT_EQ(fsFileOpen(nullptr, "r", &file, error), 0);
  EXPECT_EQ(std::string(error), std::to_string(EINVAL) + " " + std::strerror(EINVAL));
  EXPECT_EQ(fsFileOpen(first.c_str(), "r", nullptr, error), 0);
}

TEST(FileRecords, ExistsAndSize) {
  TempDir dir;
  std::string path = dir.file("data");
  writeFile(path, std::string(1234, 'x'));
  EXPECT_EQ(fsFileExists(path.c_str()), 1);
  EXPECT_EQ(fsFileExists(dir.path().c_str()), 1);
  EXPECT_EQ(fsFileExists(dir.file("none").c_str()), 0);
  EXPECT_EQ(fsFileExists(nullptr), 0);

  FILE *stream = std::fopen(path.c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  std::fseek(stream, 600, SEEK_SET);
  EXPECT_EQ(fsFileSize(stream), 1234);
  EXPECT_EQ(std::ftell(stream), 0);
  std::fclose(stream);
  int pipeEnds[2];
  ASSERT_EQ(pipe(pipeEnds), 0);
  FILE *unseekable = fdopen(pipeEnds[0], "r");
  EXPECT_EQ(fsFileSize(unseekable), -1);
  std::fclose(unseekable);
  close(pipeEnds[1]);
  EXPECT_EQ(fsFileSize(nullptr), -1);
}

TEST(FileRecords, LastModifiedIsTheLocalTimeStamp) {
  setenv("TZ", "EST5", 1);
  tzset();
  TempDir dir;
  std::string path = dir.file("stamped");
  writeFile(path, "x");
  // 2000-01-01 04:59:59 UTC is 1999-12-31 23:59:59 five hours west.
  utimbuf times{946702799, 946702799};
  ASSERT_EQ(utime(path.c_str(), &times), 0);
  char text[32];
  double value = -1;
  EXPECT_EQ(fsLastModified(path.c_str(), text, &value), 1);
  EXPECT_STREQ(text, "19991231235959+0000");
  EXPECT_EQ(value, 19991231235959.0);

  // Whatever the time, text and number agree with stat and localtime.
  struct stat status;
  ASSERT_EQ(stat(dir.path().c_str(), &status), 0);
  char expected[32];
  std::strftime(expected, sizeof expected, "%Y%m%d%H%M%S+0000", std::localtime(&status.st_mtime));
  EXPECT_EQ(fsLastModified(dir.path().c_str(), text, &value), 1);
  EXPECT_STREQ(text, expected);
  EXPECT_EQ(value, std::strtod(expected, nullptr));

  EXPECT_EQ(fsLastModified(dir.file("none").c_str(), text, &value), 0);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(value, 0.0);
}
