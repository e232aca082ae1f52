// SPDX-License-Identifier: MIT
// The exported element-table functions: loading, lookup and record copies.
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>

#include <fskit/frame.h>
#include <fskit/ini.h>
#include <fskit/strings.h>

#include "chemistry/chemistry.h"
#include "chemistry/element_load_internal.h"
#include "ini/ini_internal.h"
#include "platform/ascii.h"

namespace fskit::chemistry {
namespace {

constexpr const char kIniParagraph[] = "Formula Files";
constexpr const char kIniTopic[] = "elementFile";

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// A directory is not an element file: where the C library opens one as a
// stream it is closed again, as if it had not opened.
File openForReading(const char *name) {
  File file(std::fopen(name, "r"));
#if !defined(_WIN32)
  struct stat status;
  if (file && fstat(fileno(file.get()), &status) == 0 && S_ISDIR(status.st_mode)) file.reset();
#endif
  return file;
}

FsElementRecord *allocateRecords() {
  return static_cast<FsElementRecord *>(std::malloc(sizeof(FsElementRecord) * kCapacity));
}

LoadReport noMemory(const char *routine) {
  return {0, routine, 1, "Unable to allocate element table.", nullptr};
}

LoadReport cannotOpen(const char *routine, const char *name) {
  return {0, routine, 0, "Failed to open element file %s", name};
}

// Makes the records read from `file` the present table; false without memory.
bool install(FsElementRecord *records, std::FILE *file) {
  int32_t filled = 0;
  int32_t count = readElementFile(file, records, filled);
  return installTable(records, count, filled);
}

void forgetRecordedName() {
  std::free(elementTable().recordedName);
  elementTable().recordedName = nullptr;
}

// Records `path` as the name of the table now present: a later fsLoadElemTable
// of it, in any case, does not read it again.
void recordName(const char *path) {
  forgetRecordedName();
  char *&recorded = elementTable().recordedName;
  recorded = strmalloc(path);
  if (recorded != nullptr) strlower(recorded);
}

bool isRecordedName(const char *path) {
  const char *recorded = elementTable().recordedName;
  if (recorded == nullptr) return false;
  for (; *path != '\0'; ++path, ++recorded)
    if (ascii::toLower(*path) != *recorded) return false;
  return *recorded == '\0';
}

// Asks the INI document for the element file, a value of any length (one
// set by fsIniSetValue can be longer than any line of an INI file). Null
// when there is none; a missing value is reported as fsIniGetValue reports it.
char *configuredName(int32_t iniHandle) {
  char *name = ini::copyValueOf(iniHandle, kIniParagraph, kIniTopic);
  if (name == nullptr) {
    fsIniGetValue(iniHandle, kIniParagraph, kIniTopic, nullptr, nullptr);
    return nullptr;
  }
  if (name[0] == '\0') {
    std::free(name);
    return nullptr;
  }
  return name;
}

bool holdsRecords(const TableSnapshot &table) { return table.present && table.count != 0; }

}  // namespace

void LoadReport::send() const {
  if (routine != nullptr) fsMessage(routine, code, 0, text, name);
}

LoadReport initTable(int32_t iniHandle, int32_t load) {
  // Other threads see the old table until the new one is in place (or none,
  // once this load has failed).
  ElementTable &table = elementTable();
  // The name fsLoadElemTable recorded no longer describes the table.
  forgetRecordedName();
  std::free(table.configuredName);
  table.configuredName = configuredName(iniHandle);
  if (load == 0) {
    releaseTable();
    return {};
  }
  File file;
  if (table.configuredName != nullptr) file = openForReading(table.configuredName);
  for (const char *name : kDefaultFiles)
    if (!file) file = openForReading(name);
  if (!file) {
    releaseTable();
    return cannotOpen("fsInitElemTable", kDefaultFiles[0]);
  }
  FsElementRecord *records = allocateRecords();
  if (records == nullptr) releaseTable();
  if (records == nullptr || !install(records, file.get())) return noMemory("fsInitElemTable");
  return {};
}

bool loadElementFileKeepingTable(const char *path) {
  if (path == nullptr) path = "";
  LoadReport report;
  bool loaded = false;
  {
    ElementTable &table = elementTable();
    std::lock_guard<fskit::platform::Mutex> hold(table.loading);
    const TableSnapshot *now = currentTable.load();
    if (now != nullptr && isRecordedName(path)) return now->present && now->count > 0;
    FsElementRecord *records = allocateRecords();
    File file = records != nullptr ? openForReading(path) : File();
    int32_t filled = 0;
    int32_t count = file ? readElementFile(file.get(), records, filled) : 0;
    if (records == nullptr) report = noMemory("fsLoadElemTable");
    else if (!file) report = cannotOpen("fsLoadElemTable", path);
    if (count <= 0)
      std::free(records);  // nothing usable: the table in use stays
    else if ((loaded = installTable(records, count, filled)))
      recordName(path);
    else
      report = noMemory("fsLoadElemTable");  // as fsLoadElemTable, no table is left
  }
  report.send();
  return loaded;
}

int32_t findLabel(TableReader &reader, const char *name) {
  const TableSnapshot &table = reader.table(true);
  if (!table.present) return -1;  // the load failed and has said why
  if (table.count < 1) {
    fsMessage("findElemInTbl", 1, 0, "No element table present");
    return -1;
  }
  return name != nullptr ? table.index.find(name) : -1;
}

}  // namespace fskit::chemistry

using namespace fskit::chemistry;

extern "C" {

FSKIT_API int32_t fsInitElemTable(int32_t iniHandle, int32_t load) {
  LoadReport report;
  {
    std::lock_guard<fskit::platform::Mutex> hold(elementTable().loading);
    report = initTable(iniHandle, load);
  }
  report.send();
  return report.result;
}

FSKIT_API int32_t fsLoadElemTable(const char *path) {
  if (path == nullptr) path = "";
  LoadReport report;
  {
    ElementTable &table = elementTable();
    std::lock_guard<fskit::platform::Mutex> hold(table.loading);
    if (currentTable.load() != nullptr && isRecordedName(path)) return 1;
    // Other threads see the old table until the new one is in place (or
    // none, once this load has failed).
    FsElementRecord *records = allocateRecords();
    File file = records != nullptr ? openForReading(path) : File();
    if (records == nullptr) {
      releaseTable();
      report = noMemory("fsLoadElemTable");
    } else if (!file) {
      std::free(records);
      releaseTable();
      report = cannotOpen("fsLoadElemTable", path);
    } else if (!install(records, file.get())) {
      report = noMemory("fsLoadElemTable");
    } else {
      recordName(path);
    }
  }
  report.send();
  return report.result;
}

FSKIT_API int32_t fsFindElemInTbl(const char *name) {
  TableReader reader;
  return findLabel(reader, name);
}

FSKIT_API int32_t fsFindElement(const char *name, FsElementRecord *record) {
  TableReader reader;
  const TableSnapshot &table = reader.table();
  if (!holdsRecords(table)) {
    fsMessage("fsFindElement", 1, 0, "No element table present");
    return -1;
  }
  int32_t index = name != nullptr && table.count > 0 ? table.index.find(name) : -1;
  if (index >= 0 && record != nullptr) *record = table.records[index];
  return index;
}

FSKIT_API int32_t fsGetElementInfo(int32_t index, FsElementRecord *record) {
  TableReader reader;
  const TableSnapshot &table = reader.table();
  if (!holdsRecords(table)) {
    fsMessage("fsGetElementInfo", 1, 0, "No element table present");
    return 0;
  }
  if (index < 0 || index >= table.count) {
    fsMessage("fsGetElementInfo", 1, 0, "Index %d does not exist in element table", index);
    return 0;
  }
  if (record == nullptr) return 0;
  *record = table.records[index];
  return 1;
}

FSKIT_API int32_t fsGetElemSymbol(int32_t index, char *symbol) {
  if (symbol == nullptr) return 0;
  TableReader reader;
  const TableSnapshot &table = reader.table();
  // A table that the file filled has count -1, but its records are there.
  if (!table.present || index < 0 || index >= table.filled) {
    symbol[0] = '\0';
    return 0;
  }
  std::memcpy(symbol, table.records[index].symbol, sizeof table.records[index].symbol);
  return 1;
}

FSKIT_API int32_t fsElementTableCount(void) {
  TableReader reader;
  return reader.table().count;
}

}  // extern "C"
