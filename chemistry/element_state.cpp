// SPDX-License-Identifier: MIT
// The process-wide element table: the table readers see, the tables kept for
// them, and the first load. Constant-initialised: nothing runs at load time,
// and no table is present until the first load.
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#include "chemistry/chemistry.h"
#include "ini/ini_internal.h"
#include "platform/platform.h"

namespace fskit::chemistry {
namespace {

constinit ElementTable theTable;
constinit std::once_flag freeAtUnloadRegistered;
constexpr TableSnapshot kNoTable{};

// No call runs any more: every table kept goes.
int freeKeptTables() {
  currentTable.store(nullptr);
  while (TableSnapshot *table = theTable.kept) {
    theTable.kept = table->older;
    std::free(table->records);
    delete table;
  }
  std::free(theTable.configuredName);
  std::free(theTable.recordedName);
  theTable.configuredName = theTable.recordedName = nullptr;
  return 0;
}

bool sameContents(const TableSnapshot &table, const FsElementRecord *records, int32_t count,
                  int32_t filled) {
  return table.count == count && table.filled == filled &&
         std::memcmp(table.records, records, sizeof(FsElementRecord) * size_t(filled)) == 0;
}

}  // namespace

ElementTable &elementTable() { return theTable; }

void releaseTable() { currentTable.store(nullptr, std::memory_order_release); }

bool installTable(FsElementRecord *records, int32_t count, int32_t filled) {
  for (TableSnapshot *table = theTable.kept; table != nullptr; table = table->older)
    if (sameContents(*table, records, count, filled)) {
      std::free(records);
      currentTable.store(table, std::memory_order_release);
      return true;
    }
  auto *table = new (std::nothrow) TableSnapshot;
  if (table == nullptr) {
    std::free(records);
    releaseTable();
    return false;
  }
  table->present = true;
  table->records = records;
  table->count = count;
  table->filled = filled;
  if (count > 0) table->index.build(records, count);
  table->older = theTable.kept;
  theTable.kept = table;
  std::call_once(freeAtUnloadRegistered, [] { platform::_onexit(freeKeptTables); });
  currentTable.store(table, std::memory_order_release);
  return true;
}

const TableSnapshot &TableReader::missing(bool loadIfMissing) {
  if (loadIfMissing) {
    // The first load happens once: whoever takes the lock first loads, the
    // others find the table present.
    LoadReport report;
    {
      std::lock_guard<platform::Mutex> hold(theTable.loading);
      if (currentTable.load(std::memory_order_acquire) == nullptr)
        report = initTable(ini::kFirstHandle, 1);
    }
    report.send();
    table_ = currentTable.load(std::memory_order_acquire);
  }
  return table_ != nullptr ? *table_ : kNoTable;
}

}  // namespace fskit::chemistry
