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

}  // namespace

extern "C" {

FSKIT_API int32_t kwaTblTagCmp(const void *a, const void *b) {
  int32_t byTag = compareField(entry(a).tag, entry(b).tag);
  return byTag != 0 ? byTag : compareField(entry(a).label, entry(b).label);
}

FSKIT_API int32_t kwaTblLblCmp(const void *a, const void *b) {
  int32_t byLabel = compareField(entry(a).label, entry(b).label);
  return byLabel != 0 ? byLabel : compareField(entry(a).tag, entry(b).tag);
}

}  // extern "C"
