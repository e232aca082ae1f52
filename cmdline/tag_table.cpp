// SPDX-License-Identifier: MIT
// Tag tables: adding pairs and looking tags and labels up.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <fskit/cmdline.h>
#include <fskit/strings.h>

#include "cmdline/tags.h"
#include "platform/platform.h"

using fskit::tags::copyCut;
using fskit::tags::kKept;

namespace {

constexpr int32_t kGrowth = 10;

// A block of `held` + kGrowth records. On failure the old block goes too,
// since the caller is left without a pointer to it.
bool grow(int32_t held, int32_t *capacity, KwaTagEntry **table) {
  void *grown = nullptr;
  if (held <= INT32_MAX - kGrowth) {
    *capacity = held + kGrowth;
    grown = std::realloc(*table, size_t(*capacity) * sizeof(KwaTagEntry));
  }
  if (grown == nullptr) std::free(*table);
  *table = static_cast<KwaTagEntry *>(grown);
  return grown != nullptr;
}

}  // namespace

extern "C" {

FSKIT_API int32_t kwaAddToTbl(const char *tag, const char *label, int32_t *count,
                              int32_t *capacity, KwaTagEntry **table) {
  if (count == nullptr || capacity == nullptr || table == nullptr) return 0;
  // A null table holds nothing, whatever the capacity says.
  int32_t held = *table != nullptr ? *capacity : 0;
  if (*count < 0 || *count > held) return 0;
  if (tag == nullptr || label == nullptr || *tag == '\0' || *label == '\0') return *count;

  char upper[kKept + 1];
  copyCut(upper, tag, kKept);
  strupper(upper);
  char found[kKept + 1];
  if (kwaLabelToTag(*count, *table, label, found) >= 0 && std::strcmp(found, upper) == 0)
    return *count;

  if (*count == held && !grow(held, capacity, table)) return 0;
  KwaTagEntry &entry = (*table)[*count];
  std::memset(&entry, 0, sizeof entry);
  copyCut(entry.tag, upper, kKept);  // only the text: the rest of `upper` was never written
  copyCut(entry.label, label, kKept);
  entry.labelLen = int32_t(std::strlen(entry.label));
  return ++*count;
}

FSKIT_API int32_t kwaTagToLabel(int32_t count, const KwaTagEntry *table, const char *tag,
                                char *label) {
  if (label != nullptr) *label = '\0';
  if (count < 1 || table == nullptr || tag == nullptr) return -1;
  size_t length = std::strlen(tag);
  if (length >= sizeof table->tag) return -1;  // longer than any stored tag
  for (int32_t i = 0; i < count; ++i) {
    if (std::memcmp(table[i].tag, tag, length + 1) != 0) continue;
    if (label != nullptr) copyCut(label, table[i].label, kKept);
    return i;
  }
  return -1;
}

FSKIT_API int32_t kwaLabelToTag(int32_t count, const KwaTagEntry *table, const char *label,
                                char *tag) {
  if (tag != nullptr) *tag = '\0';
  if (count < 1 || table == nullptr || label == nullptr) return -1;
  for (int32_t i = 0; i < count; ++i) {
    // A record matches every label that begins with its own, so its length,
    // not the given label's, bounds the comparison.
    int32_t length = std::clamp(table[i].labelLen, 0, int32_t(sizeof table[i].label));
    if (fskit::platform::_strnicmp(label, table[i].label, unsigned(length)) != 0) continue;
    if (tag != nullptr) copyCut(tag, table[i].tag, kKept);
    return i;
  }
  return -1;
}

}  // extern "C"
