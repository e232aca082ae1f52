// SPDX-License-Identifier: MIT
// Lookups of names and constants in a caller's identification table.
#include <cstring>

#include <fskit/util.h>

#include "platform/platform.h"

namespace {

constexpr char kUndefined[] = "Undefined";

// The linear lookups walk up to the entry with the empty name.
bool isEnd(const FsIdentEntry &entry) { return entry.name[0] == '\0'; }

}  // namespace

extern "C" {

FSKIT_API int32_t identifyUniqueName(const FsIdentEntry *table, const char *name) {
  if (table == nullptr || name == nullptr) return -2;
  size_t length = std::strlen(name);
  const FsIdentEntry *match = nullptr;
  for (const FsIdentEntry *entry = table; !isEnd(*entry); ++entry) {
    if (std::strncmp(entry->name, name, length) != 0) continue;
    if (match != nullptr) return -1;
    match = entry;
  }
  return match != nullptr ? match->value : -2;
}

FSKIT_API const char *identifyName(const FsIdentEntry *table, int32_t value) {
  if (table != nullptr)
    for (const FsIdentEntry *entry = table; !isEnd(*entry); ++entry)
      if (entry->value == value) return entry->name;
  return kUndefined;
}

FSKIT_API int32_t identifyConst(const FsIdentEntry *table, const char *name) {
  if (table == nullptr || name == nullptr) return -1;
  for (const FsIdentEntry *entry = table; !isEnd(*entry); ++entry)
    if (fskit::platform::_stricmp(entry->name, name) == 0) return entry->value;
  return -1;
}

FSKIT_API int32_t identifyConstC(const FsIdentEntry *table, int32_t key,
                                 FsIdentCompare compare) {
  if (table == nullptr || compare == nullptr) return -1;
  for (const FsIdentEntry *entry = table; !isEnd(*entry); ++entry)
    if (compare(entry->name, key) == 0) return entry->value;
  return -1;
}

FSKIT_API int32_t identBSrchConst(const FsIdentEntry *table, const int32_t *count,
                                  int32_t key, int32_t *index, FsIdentCompare compare) {
  if (index != nullptr) *index = -1;
  if (table == nullptr || count == nullptr || compare == nullptr || *count <= 0) return -1;
  int32_t low = 0, high = *count - 1;
  while (low <= high) {
    int32_t mid = low + (high - low) / 2;
    int32_t order = compare(table[mid].name, key);
    if (order < 0) {
      low = mid + 1;
    } else if (order > 0) {
      high = mid - 1;
    } else {
      if (index != nullptr) *index = mid;
      return table[mid].value;
    }
  }
  return -1;
}

}  // extern "C"
