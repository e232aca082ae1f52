// The work files of the file sort: their names, the slots that hold the open
// files, and the clean-up that closes and removes them, after every sort and
// once more when the library is unloaded.
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"
#include "sort/sorting.h"

namespace fskit::sort {

namespace {
constexpr long kFixedNames = 20;  // numbers removed even when not used here
}

char *workFileName(long number) {
  const char *prefix = workFiles().prefix != nullptr ? workFiles().prefix : "";
  size_t size = std::strlen(prefix) + sizeof "sort_.tmp" + 20;
  char *name = static_cast<char *>(std::malloc(size));
  if (name != nullptr) std::snprintf(name, size, "%ssort_%ld.tmp", prefix, number);
  return name;
}

int cleanUpWorkFiles() {
  WorkFiles &files = workFiles();
  for (std::FILE *&slot : files.slots) {
    if (slot != nullptr) std::fclose(slot);
    slot = nullptr;
  }
  // Names are built on the stack: the clean-up must also work when memory
  // has run out. A name that does not fit PATH_MAX cannot name a file.
  const char *prefix = files.prefix != nullptr ? files.prefix : "";
  long names = files.namesUsed > kFixedNames ? files.namesUsed : kFixedNames;
  for (long number = 0; number < names; ++number) {
    char name[PATH_MAX];
    int length = std::snprintf(name, sizeof name, "%ssort_%ld.tmp", prefix, number);
    if (length > 0 && size_t(length) < sizeof name) std::remove(name);
  }
  files.namesUsed = 0;
  return 0;
}

namespace {
// At unload the prefix goes too, so that unloading the library leaves none
// of its memory behind.
int cleanUpAtUnload() {
  cleanUpWorkFiles();
  std::free(workFiles().prefix);
  workFiles().prefix = nullptr;
  return 0;
}
}  // namespace

bool startWorkFiles(const char *prefix) {
  WorkFiles &files = workFiles();
  for (std::FILE *&slot : files.slots) {
    if (slot != nullptr) std::fclose(slot);
    slot = nullptr;
  }
  std::free(files.prefix);
  files.prefix = strdup(prefix != nullptr ? prefix : "");
  if (files.prefix == nullptr) return false;
  cleanUpWorkFiles();
  platform::_onexit(cleanUpAtUnload);
  return true;
}

std::FILE *openInSlot(const char *name, const char *mode) {
  for (std::FILE *&slot : workFiles().slots) {
    if (slot != nullptr) continue;
    slot = std::fopen(name, mode);
    return slot;
  }
  return nullptr;
}

bool closeSlot(std::FILE *file) {
  for (std::FILE *&slot : workFiles().slots)
    if (slot == file) slot = nullptr;
  bool written = !std::ferror(file);
  return std::fclose(file) == 0 && written;
}

}  // namespace fskit::sort
