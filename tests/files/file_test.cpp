// SPDX-License-Identifier: MIT
// Path helpers, file records, file times and sizes.
#include <fskit/files.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>

#include "tests/support/test_support.h"

using fskit::test::TempDir;

namespace {

std::string errorText(int error) { return std::to_string(error) + " " + std::strerror(error); }

}  // namespace

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
  EXPECT_EQ(fsFileOpen(dir.file("missing/file").c_str(), "r", &file, error), 0);
  EXPECT_EQ(error, errorText(ENOENT));
  EXPECT_EQ(file.stream, nullptr);
  EXPECT_EQ(file.name, nullptr);
  EXPECT_EQ(fsFileOpen(dir.path().c_str(), "w", &file, error), 0);
#if defined(_WIN32)
  EXPECT_EQ(error, errorText(EACCES));  // the C runtime's number for a directory
#else
  EXPECT_EQ(error, errorText(EISDIR));
#endif

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
  fskit::test::writeFile(path, std::string(1234, 'x'));
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
}

TEST(FileRecords, LastModifiedIsTheLocalTimeStamp) {
  fskit::test::setTimeZone("EST5");
  TempDir dir;
  std::string path = dir.file("stamped");
  fskit::test::writeFile(path, "x");
  utimbuf times{946702799, 946702799};  // date -u -d "2000-01-01 04:59:59" +%s
  ASSERT_EQ(utime(path.c_str(), &times), 0);
  char text[32];
  double value = -1;
  EXPECT_EQ(fsLastModified(path.c_str(), text, &value), 1);
  EXPECT_STREQ(text, "19991231235959+0000");
  EXPECT_EQ(value, 19991231235959.0);

  struct stat status;  // a time of today, through stat and localtime
  ASSERT_EQ(stat(dir.path().c_str(), &status), 0);
  char expected[32];
  std::strftime(expected, sizeof expected, "%Y%m%d%H%M%S+0000", std::localtime(&status.st_mtime));
  EXPECT_EQ(fsLastModified(dir.path().c_str(), text, &value), 1);
  EXPECT_STREQ(text, expected);
  EXPECT_EQ(value, std::stod(expected));

  EXPECT_EQ(fsLastModified(dir.file("none").c_str(), text, &value), 0);
  EXPECT_EQ(text + std::to_string(value), "0.000000");
}
