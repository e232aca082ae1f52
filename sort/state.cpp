// The sort family's process-wide state: the sort context of the typed sorts
// and the work files of the file sort. Constant-initialised.
#include "sort/sorting.h"

namespace fskit::sort {
namespace {
constinit SortContext context;
constinit WorkFiles files;
}  // namespace

SortContext &sortContext() { return context; }
WorkFiles &workFiles() { return files; }

}  // namespace fskit::sort
