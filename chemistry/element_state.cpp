// The process-wide element table. Constant-initialised: nothing runs at load
// time, and no table is present until the first load.
#include <cstdlib>

#include "chemistry/chemistry.h"

namespace fskit::chemistry {
namespace {
constinit ElementTable theTable;
}

ElementTable &elementTable() { return theTable; }

void releaseTable() {
  std::free(theTable.records);
  theTable.records = nullptr;
  theTable.present = false;
  theTable.count = 0;
  theTable.filled = 0;
  theTable.index.clear();
}

const ElementTable &TableReader::table(bool loadIfMissing) {
  if (!lock_.owns_lock()) lock_ = std::shared_lock<platform::SharedMutex>(theTable.lock);
  if (theTable.present || !loadIfMissing) return theTable;
  // The first load happens once: whoever gets the exclusive lock first loads,
  // the others find the table present.
  lock_.unlock();
  LoadReport report;
  {
    std::unique_lock<platform::SharedMutex> exclusive(theTable.lock);
    if (!theTable.present) report = initTable(1000, 1);
  }
  report.send();
  lock_.lock();
  return theTable;
}

}  // namespace fskit::chemistry
