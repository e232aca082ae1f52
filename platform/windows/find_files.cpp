// SPDX-License-Identifier: MIT
// Directory searches by the system's FindFirstFileA, whose record is the one
// the listing expects: its 318 bytes of fields are copied whole (the
// system's own struct adds two bytes of tail padding).
#include <windows.h>

#include <cstddef>
#include <cstring>

#include "platform/platform.h"

namespace fskit::platform {
namespace {

static_assert(offsetof(WIN32_FIND_DATAA, cFileName) == offsetof(FindData, cFileName) &&
              offsetof(WIN32_FIND_DATAA, cAlternateFileName) ==
                  offsetof(FindData, cAlternateFileName) &&
              sizeof(WIN32_FIND_DATAA) >= sizeof(FindData));
// A search handle is the system's; INVALID_HANDLE_VALUE has all bits set,
// which is kNoSearch.
static_assert(sizeof(HANDLE) == sizeof(SearchHandle));

void copyFound(const WIN32_FIND_DATAA &found, FindData *data) {
  std::memcpy(data, &found, sizeof(FindData));
}

}  // namespace

SearchHandle FindFirstFileSA(const char *pattern, FindData *data) {
  if (pattern == nullptr || data == nullptr) return kNoSearch;
  WIN32_FIND_DATAA found;
  HANDLE search = FindFirstFileA(pattern, &found);
  if (search == INVALID_HANDLE_VALUE) return kNoSearch;
  copyFound(found, data);
  return reinterpret_cast<SearchHandle>(search);
}

int FindNextFileSA(SearchHandle search, FindData *data) {
  if (search == kNoSearch || search == 0 || data == nullptr) return 0;
  WIN32_FIND_DATAA found;
  if (!FindNextFileA(reinterpret_cast<HANDLE>(search), &found)) return 0;
  copyFound(found, data);
  return 1;
}

int FindCloseS(SearchHandle search) {
  if (search == kNoSearch || search == 0) return 0;
  return FindClose(reinterpret_cast<HANDLE>(search)) ? 1 : 0;
}

}  // namespace fskit::platform
