// The sort family's state: the sort context of the typed sorts, one per
// thread, and the work files of the file sort. Constant-initialised, so
// reaching the context costs no guard.
#include "sort/sorting.h"

namespace fskit::sort {
namespace {
constinit thread_local SortContext context;
constinit WorkFiles files;
}  // namespace

SortContext &sortContext() { return context; }
WorkFiles &workFiles() { return files; }

}  // namespace fskit::sort
