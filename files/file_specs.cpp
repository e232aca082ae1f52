// SPDX-License-Identifier: MIT
// Releasing lists of file records.
#include <cstdlib>
#include <initializer_list>

#include <fskit/files.h>

extern "C" {

FSKIT_API void fsFileSpecListFree(int32_t count, FsFileSpec **list) {
  if (list == nullptr || *list == nullptr) return;
  for (int32_t i = 0; i < count; ++i) {
    FsFileSpec &record = (*list)[i];
    for (char *text : {record.drive, record.directory, record.name, record.extension})
      std::free(text);
  }
  std::free(*list);
  *list = nullptr;
}

FSKIT_API void fsReadDirFree(int32_t count, FsFileSpec **list)
    __attribute__((alias("fsFileSpecListFree")));

}  // extern "C"
