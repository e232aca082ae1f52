// The process-wide element table. Constant-initialised: nothing runs at load
// time, and no table is present until the first load.
#include <cstdlib>

#include "chemistry/chemistry.h"

namespace fskit::chemistry {
namespace {
constinit ElementTable table;
}

ElementTable &elementTable() { return table; }

void releaseTable() {
  std::free(table.records);
  table.records = nullptr;
  table.present = false;
  table.count = 0;
  table.filled = 0;
  table.index.clear();
}

}  // namespace fskit::chemistry
