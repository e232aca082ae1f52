// SPDX-License-Identifier: MIT
// The work files of the file sort: their names, the slots that hold the open
// files, and the clean-up that closes and removes them, after every sort and
// once more when the library is unloaded. The sorts in progress are kept in
// a list under a lock, taken when a sort starts and when it finishes.
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "platform/locks.h"
#include "platform/platform.h"
#include "sort/sorting.h"

namespace fskit::sort {

namespace {

constexpr long kFixedNames = 20;  // numbers removed even when not used here

// Names are built on the stack: the clean-up must also work when memory has
// run out. A name that does not fit PATH_MAX cannot name a file.
void removeNames(const char *prefix, long used) {
  long names = used > kFixedNames ? used : kFixedNames;
  for (long number = 0; number < names; ++number) {
    char name[PATH_MAX];
    int length = std::snprintf(name, sizeof name, "%ssort_%ld.tmp", prefix, number);
    if (length > 0 && size_t(length) < sizeof name) std::remove(name);
  }
}

struct Registry {
  platform::Mutex lock;
  WorkFiles *first = nullptr;  // the sorts in progress
  unsigned long started = 0;   // the ticket of the sort started last
  // That sort's prefix once it has finished: the unload removes its fixed
  // names once more.
  char *lastPrefix = nullptr;
};
constinit Registry registry;
constinit std::once_flag unloadRegistered;

}  // namespace

char *WorkFiles::name(long number) const {
  size_t size = std::strlen(prefix()) + sizeof "sort_.tmp" + 20;
  char *name = static_cast<char *>(std::malloc(size));
  if (name != nullptr) std::snprintf(name, size, "%ssort_%ld.tmp", prefix(), number);
  return name;
}

void WorkFiles::cleanUp() {
  for (std::FILE *&slot : slots_) {
    if (slot != nullptr) std::fclose(slot);
    slot = nullptr;
  }
  removeNames(prefix(), namesUsed_);
  namesUsed_ = 0;
}

// Every sort still in progress is closed and its files removed; the
// prefixes go too, so that unloading the library leaves none of its memory
// behind.
int WorkFiles::cleanUpAtUnload() {
  std::lock_guard<platform::Mutex> hold(registry.lock);
  for (WorkFiles *files = registry.first; files != nullptr; files = files->next_) {
    files->cleanUp();
    std::free(files->prefix_);
    files->prefix_ = nullptr;
  }
  if (registry.lastPrefix != nullptr) removeNames(registry.lastPrefix, 0);
  std::free(registry.lastPrefix);
  registry.lastPrefix = nullptr;
  return 0;
}

WorkFiles::Start WorkFiles::start(const char *prefix) {
  prefix_ = strdup(prefix != nullptr ? prefix : "");
  if (prefix_ == nullptr) return Start::kNoMemory;
  {
    std::lock_guard<platform::Mutex> hold(registry.lock);
    for (const WorkFiles *other = registry.first; other != nullptr; other = other->next_)
      if (std::strcmp(other->prefix(), prefix_) == 0) return Start::kInUse;
    next_ = registry.first;
    if (next_ != nullptr) next_->previous_ = this;
    registry.first = this;
    ticket_ = ++registry.started;
    std::free(registry.lastPrefix);
    registry.lastPrefix = nullptr;
    started_ = true;
  }
  // What an earlier sort with this prefix left behind goes now.
  cleanUp();
  std::call_once(unloadRegistered, [] { platform::_onexit(cleanUpAtUnload); });
  return Start::kReady;
}

void WorkFiles::finish() {
  if (!started_) return;
  // The files go before the prefix is free for another sort.
  cleanUp();
  std::lock_guard<platform::Mutex> hold(registry.lock);
  (previous_ != nullptr ? previous_->next_ : registry.first) = next_;
  if (next_ != nullptr) next_->previous_ = previous_;
  previous_ = next_ = nullptr;
  started_ = false;
  if (ticket_ == registry.started) {
    registry.lastPrefix = prefix_;
    prefix_ = nullptr;
  }
}

WorkFiles::~WorkFiles() {
  finish();
  std::free(prefix_);
}

std::FILE *WorkFiles::open(const char *name, const char *mode) {
  for (std::FILE *&slot : slots_) {
    if (slot != nullptr) continue;
    slot = std::fopen(name, mode);
    return slot;
  }
  return nullptr;
}

bool WorkFiles::close(std::FILE *file) {
  for (std::FILE *&slot : slots_)
    if (slot == file) slot = nullptr;
  bool written = !std::ferror(file);
  return std::fclose(file) == 0 && written;
}

}  // namespace fskit::sort
