// SPDX-License-Identifier: MIT
// Directory listing: the search pattern, the records of the names found and
// the growth of the list.
#include <cstdlib>
#include <cstring>

#include <fskit/files.h>
#include <fskit/frame.h>

#include "platform/platform.h"

using namespace fskit::platform;

namespace {

// Working limits, in characters, of the parts of a listing.
constexpr size_t kMaxDrive = 79;
constexpr size_t kMaxDirectory = 255;
constexpr size_t kMaxPattern = 255;
constexpr size_t kMaxNamePart = 79;

constexpr int32_t kBlockRecords = 100;

// A copy of at most kMaxNamePart characters of `text`.
struct NamePart {
  char text[kMaxNamePart + 1] = {};
  NamePart(const char *start, size_t length) {
    if (length > kMaxNamePart) length = kMaxNamePart;
    std::memcpy(text, start, length);
  }
};

// The list as it grows in the caller's pointer.
class Listing {
 public:
  Listing(FsFileSpec **list, const char *drive, const char *directory)
      : list_(list), drive_(drive), directory_(directory) {}

  // False when the list could not grow; it is then released and null.
  bool add(const char *fileName) {
    // A full list grows for every name delivered, also one passed over below.
    if (count_ == capacity_ && !grow()) return fail();
    const char *dot = std::strchr(fileName, '.');
    size_t baseLength = dot != nullptr ? static_cast<size_t>(dot - fileName) : std::strlen(fileName);
    // Also passes over "." and "..".
    if (baseLength == 0) return true;
    NamePart base(fileName, baseLength);
    NamePart extension(dot != nullptr ? dot + 1 : "", dot != nullptr ? std::strlen(dot + 1) : 0);
    // A text that cannot be copied stays null; the record and the listing go on.
    (*list_)[count_++] = {strmalloc(drive_), strmalloc(directory_), strmalloc(base.text),
                          strmalloc(extension.text)};
    return true;
  }

  int32_t count() const { return count_; }

 private:
  bool grow() {
    void *larger = std::realloc(*list_, sizeof(FsFileSpec) * size_t(capacity_ + kBlockRecords));
    if (larger == nullptr) return false;
    *list_ = static_cast<FsFileSpec *>(larger);
    capacity_ += kBlockRecords;
    return true;
  }

  bool fail() {
    fsFileSpecListFree(count_, list_);
    count_ = 0;
    return false;
  }

  FsFileSpec **list_;
  const char *drive_;
  const char *directory_;
  int32_t count_ = 0;
  int32_t capacity_ = kBlockRecords;  // the first block is allocated by the caller
};

}  // namespace

extern "C" {

FSKIT_API int32_t ntReadDir(const char *directory, const char *namePattern,
                            const char *extPattern, FsFileSpec **list) {
  if (list == nullptr) return 0;
  if (directory == nullptr) directory = "";
  if (namePattern == nullptr) namePattern = "";
  if (extPattern == nullptr || extPattern[0] == '\0') extPattern = ".*";
  *list = static_cast<FsFileSpec *>(std::malloc(sizeof(FsFileSpec) * kBlockRecords));
  if (*list == nullptr) return 0;

  const char *colon = std::strchr(directory, ':');
  size_t driveLength = colon != nullptr ? static_cast<size_t>(colon - directory) + 1 : 0;
  size_t length = std::strlen(directory);
  const char *separator = length > 0 && directory[length - 1] != '\\' ? "\\" : "";
  size_t directoryLength = length - driveLength + std::strlen(separator);
  size_t patternLength = length + std::strlen(separator) + std::strlen(namePattern) +
                         std::strlen(extPattern);
  if (driveLength > kMaxDrive || directoryLength > kMaxDirectory || patternLength > kMaxPattern)
    return 0;
  char drive[kMaxDrive + 1], directoryPart[kMaxDirectory + 1], pattern[kMaxPattern + 1];
  std::memcpy(drive, directory, driveLength);
  drive[driveLength] = '\0';
  std::strcpy(directoryPart, directory + driveLength);
  std::strcat(directoryPart, separator);
  std::strcpy(pattern, directory);
  std::strcat(pattern, separator);
  std::strcat(pattern, namePattern);
  std::strcat(pattern, extPattern);

  FindData found{};
  SearchHandle search = FindFirstFileSA(pattern, &found);
  if (search == kNoSearch) return 0;
  Listing listing(list, drive, directoryPart);
  bool more = true;
  while (more && listing.add(found.cFileName)) more = FindNextFileSA(search, &found) != 0;
  FindCloseS(search);
  return listing.count();
}

FSKIT_API int32_t fsReadDir(const char *directory, const char *namePattern,
                            const char *extPattern, FsFileSpec **list) {
  return ntReadDir(directory, namePattern, extPattern, list);
}

}  // extern "C"
