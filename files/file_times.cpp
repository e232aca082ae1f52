// SPDX-License-Identifier: MIT
// The modification time of a file as the stamp yyyymmddhhmmss+0000.
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>

#include <fskit/datetime.h>
#include <fskit/files.h>

#include "platform/platform.h"

namespace {

// The stamp of the latest time an asctime text holds: the year fits in an int
// (10 digits), then month, day, hour, minute, second (10) and "+0000". Years
// before 0 are not read, so no sign is needed.
constexpr size_t kStampSize = std::numeric_limits<int>::digits10 + 1 + 10 + 5 + 1;
static_assert(kStampSize == 26, "the size files.h documents");

}  // namespace

extern "C" FSKIT_API int32_t fsLastModified(const char *path, char *text, double *value) {
  if (text != nullptr) text[0] = '\0';
  if (value != nullptr) *value = 0.0;
  struct stat status;
  if (path == nullptr || fskit::platform::_stat(path, &status) != 0) return 0;
  // Through the asctime text, as the date/time conversion reads it.
  std::tm local;
  char modified[fskit::platform::kAscTimeSize];
  char stamp[64];
  if (!fskit::platform::localTime(status.st_mtime, local) ||
      !fskit::platform::ascTime(local, modified) || fsDateTime(4, modified, 6, stamp, "", 0) == 0)
    return 0;
  if (std::strlen(stamp) >= kStampSize) return 0;  // cannot happen, see above
  if (text != nullptr) std::strcpy(text, stamp);
  // The number is the fourteen digits before the zone's sign.
  if (char *plus = std::strchr(stamp, '+')) *plus = '\0';
  if (value != nullptr) *value = std::strtod(stamp, nullptr);
  return 1;
}
