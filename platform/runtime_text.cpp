// SPDX-License-Identifier: MIT
// Local time and its asctime text, and error texts, without the C
// runtime's shared buffers; whole-stream locking. Threads calling side by
// side never share a result.
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "platform/platform.h"

namespace fskit::platform {

bool localTime(std::time_t seconds, std::tm &local) {
#if defined(_WIN32)
  return localtime_s(&local, &seconds) == 0;
#else
  return localtime_r(&seconds, &local) != nullptr;
#endif
}

bool ascTime(const std::tm &time, char (&text)[kAscTimeSize]) {
  static constexpr char kDays[7][4] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static constexpr char kMonths[12][4] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  // The year must be representable as an int, as the C runtime requires.
  if (time.tm_year > INT_MAX - 1900) return false;
  const char *day = time.tm_wday >= 0 && time.tm_wday < 7 ? kDays[time.tm_wday] : "???";
  const char *month = time.tm_mon >= 0 && time.tm_mon < 12 ? kMonths[time.tm_mon] : "???";
#if defined(_WIN32)
  // The Windows runtime writes the day with two digits ("Jan 01").
  constexpr const char *kLayout = "%.3s %.3s %.2d %.2d:%.2d:%.2d %d\n";
#else
  constexpr const char *kLayout = "%.3s %.3s%3d %.2d:%.2d:%.2d %d\n";
#endif
  int length = std::snprintf(text, sizeof text, kLayout, day, month,
                             time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec,
                             time.tm_year + 1900);
  return length > 0 && size_t(length) < sizeof text;
}

const char *errorText(int error, char *buffer, size_t size) {
#if defined(_WIN32)
  if (strerror_s(buffer, size, error) != 0) buffer[0] = '\0';
  return buffer;
#elif defined(__GLIBC__) && defined(_GNU_SOURCE)
  return strerror_r(error, buffer, size);  // the GNU form: a text, ours or its own
#else
  if (strerror_r(error, buffer, size) != 0) std::snprintf(buffer, size, "Unknown error %d", error);
  return buffer;
#endif
}

StreamLock::StreamLock(std::FILE *stream) : stream_(stream) {
#if defined(_WIN32)
  _lock_file(stream_);
#else
  flockfile(stream_);
#endif
}

StreamLock::~StreamLock() {
#if defined(_WIN32)
  _unlock_file(stream_);
#else
  funlockfile(stream_);
#endif
}

}  // namespace fskit::platform
