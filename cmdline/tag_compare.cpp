// SPDX-License-Identifier: MIT
// The two orders of a tag table, as comparators for a standard sort.
#include <cstring>

#include <fskit/cmdline.h>

namespace {

int32_t sign(int difference) { return (difference > 0) - (difference < 0); }

// strncmp compares as unsigned bytes; the bound keeps it inside the field.
template <size_t N>
int32_t compareField(const char (&a)[N], const char (&b)[N]) {
  return sign(std::strncmp(a, b, N));
}

const KwaTagEntry &entry(const void *p) { return *static_cast<const KwaTagEntry *>(p); }

// Compares by one field, then by the other; a null record comes first.
template <size_t N, size_t M>
int32_t compareRecords(const void *a, const void *b, char (KwaTagEntry::*first)[N],
                       char (KwaTagEntry::*second)[M]) {
  if (a == nullptr || b == nullptr) return (a != nullptr) - (b != nullptr);
  int32_t byFirst = compareField(entry(a).*first, entry(b).*first);
  return byFirst != 0 ? byFirst : compareField(entry(a).*second, entry(b).*second);
}

}  // namespace

extern "C" {

FSKIT_API int32_t kwaTblTagCmp(const void *a, const void *b) {
  return compareRecords(a, b, &KwaTagEntry::tag, &KwaTagEntry::label);
}

FSKIT_API int32_t kwaTblLblCmp(const void *a, const void *b) {
  return compareRecords(a, b, &KwaTagEntry::label, &KwaTagEntry::tag);
}

}  // extern "C"
