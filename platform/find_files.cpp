// SPDX-License-Identifier: MIT
// Directory searches over opendir/readdir with the original platform's
// pattern rules.
#include <dirent.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/platform.h"

namespace fskit::platform {
namespace {

struct Search {
  DIR *directory = nullptr;
  char *pattern = nullptr;  // the last component of the search pattern
};

bool matchesWildcards(const char *pattern, const char *name) {
  // On a mismatch, the last `*` takes one more character and matching resumes.
  const char *starPattern = nullptr, *starName = nullptr;
  while (*name != '\0') {
    if (*pattern == '*') {
      starPattern = ++pattern;
      starName = name;
    } else if (*pattern != '\0' && (*pattern == '?' || *pattern == *name)) {
      ++pattern;
      ++name;
    } else if (starPattern != nullptr) {
      pattern = starPattern;
      name = ++starName;
    } else {
      return false;
    }
  }
  while (*pattern == '*') ++pattern;
  return *pattern == '\0';
}

// "run*.*" matches run5 as well as run5.raw, as the original platform's does.
bool matches(char *pattern, const char *name) {
  if (matchesWildcards(pattern, name)) return true;
  size_t length = std::strlen(pattern);
  if (length < 2 || std::strcmp(pattern + length - 2, ".*") != 0 || std::strchr(name, '.'))
    return false;
  pattern[length - 2] = '\0';
  bool matched = matchesWildcards(pattern, name);
  pattern[length - 2] = '.';
  return matched;
}

// Reads on to the next matching name; false at the end of the directory.
bool nextMatch(Search &search, FindData &data) {
  while (const dirent *entry = readdir(search.directory)) {
    if (!matches(search.pattern, entry->d_name)) continue;
    std::strncpy(data.cFileName, entry->d_name, sizeof data.cFileName - 1);
    data.cFileName[sizeof data.cFileName - 1] = '\0';
    return true;
  }
  return false;
}

void endSearch(Search *search) {
  if (search->directory != nullptr) closedir(search->directory);
  std::free(search->pattern);
  delete search;
}

}  // namespace

SearchHandle FindFirstFileSA(const char *pattern, FindData *data) {
  char path[kHostPathSize];
  if (pattern == nullptr || data == nullptr || !toHostPath(pattern, path)) return kNoSearch;
  char *slash = std::strrchr(path, '/');
  const char *directory = ".";
  const char *last = path;
  if (slash != nullptr) {
    *slash = '\0';
    directory = slash == path ? "/" : path;
    last = slash + 1;
  }
  Search *search = new (std::nothrow) Search;
  if (search == nullptr) return kNoSearch;
  search->pattern = strdup(last);
  if (search->pattern != nullptr) search->directory = opendir(directory);
  if (search->directory == nullptr || !nextMatch(*search, *data)) {
    endSearch(search);
    return kNoSearch;
  }
  return reinterpret_cast<SearchHandle>(search);
}

int FindNextFileSA(SearchHandle search, FindData *data) {
  if (search == kNoSearch || search == 0 || data == nullptr) return 0;
  return nextMatch(*reinterpret_cast<Search *>(search), *data) ? 1 : 0;
}

int FindCloseS(SearchHandle search) {
  if (search == kNoSearch || search == 0) return 0;
  endSearch(reinterpret_cast<Search *>(search));
  return 1;
}

}  // namespace fskit::platform
