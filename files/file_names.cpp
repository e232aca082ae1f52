// SPDX-License-Identifier: MIT
// Splitting paths into directory, name and extension, and appending
// sub-directories. Only the backslash separates.
#include <cstring>
#include <initializer_list>

#include <fskit/files.h>

extern "C" {

FSKIT_API void fsFileParse(const char *path, char *directory, char *name, char *extension) {
  for (char *output : {directory, name, extension})
    if (output != nullptr) output[0] = '\0';
  if (path == nullptr) return;
  const char *lastSeparator = std::strrchr(path, '\\');
  const char *fileName = lastSeparator != nullptr ? lastSeparator + 1 : path;
  if (directory != nullptr) {
    size_t length = static_cast<size_t>(fileName - path);
    std::memcpy(directory, path, length);
    directory[length] = '\0';
  }
  if (name != nullptr) {
    size_t length = std::strcspn(fileName, ".");
    std::memcpy(name, fileName, length);
    name[length] = '\0';
  }
  // The extension starts at the last dot, so in run.tar.gz ".tar" belongs to
  // neither the name nor the extension.
  if (const char *dot = std::strrchr(fileName, '.'); extension != nullptr && dot != nullptr)
    std::strcpy(extension, dot);
}

FSKIT_API int32_t fsAppendSubDir(char *directory, const char *sub) {
  if (directory == nullptr) return 1;
  if (sub == nullptr) sub = "";
  size_t length = std::strlen(directory);
  if (length == 0 || directory[length - 1] != '\\') directory[length++] = '\\';
  std::strcpy(directory + length, sub);
  std::strcat(directory + length, "\\");
  return 1;
}

}  // extern "C"
