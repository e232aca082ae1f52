// SPDX-License-Identifier: MIT
// fsSort and fsSortIndex on 10 million keys against what a caller would use
// instead: the C library's qsort with an equivalent comparison function, and
// std::sort on the bare key type.
#include <fskit/sort.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "bench/common/ratios.h"
#include "bench/sort/register_sort.h"
#include "bench/sort/sort_data.h"

namespace {

constexpr size_t kCount = 10'000'000;

using fskit::bench::Record;
std::vector<int32_t> int32Keys;
std::vector<double> doubleKeys;
std::vector<Record> records;
const int32_t *indexedInt32;
const double *indexedDouble;

template <class T> int compareValues(T a, T b) { return a > b ? 1 : a < b ? -1 : 0; }
int compareInt32(const void *a, const void *b) {
  return compareValues(*static_cast<const int32_t *>(a), *static_cast<const int32_t *>(b));
}
int compareDouble(const void *a, const void *b) {
  return compareValues(*static_cast<const double *>(a), *static_cast<const double *>(b));
}
int compareRecord(const void *a, const void *b) {
  return compareValues(static_cast<const Record *>(a)->key, static_cast<const Record *>(b)->key);
}
int compareIndexedInt32(const void *a, const void *b) {
  return compareValues(indexedInt32[*static_cast<const int32_t *>(a)],
                       indexedInt32[*static_cast<const int32_t *>(b)]);
}
int compareIndexedDouble(const void *a, const void *b) {
  return compareValues(indexedDouble[*static_cast<const int32_t *>(a)],
                       indexedDouble[*static_cast<const int32_t *>(b)]);
}

// Each iteration sorts a fresh copy of `input`.
template <class T>
void registerSort(const std::string &name, const std::vector<T> &input,
                  std::function<void(std::vector<T> &)> sort) {
  fskit::bench::registerSort(name, input, sort, 3);
}

std::vector<int32_t> identity() {
  std::vector<int32_t> index(kCount);
  std::iota(index.begin(), index.end(), 0);
  return index;
}

}  // namespace

int main(int argc, char **argv) {
  fskit::bench::SortData data = fskit::bench::makeSortData(kCount);
  int32Keys = std::move(data.int32Keys);
  doubleKeys = std::move(data.doubleKeys);
  records = std::move(data.records);
  indexedInt32 = int32Keys.data();
  indexedDouble = doubleKeys.data();
  static const std::vector<int32_t> index = identity();
  const int n = int(kCount);

  using I = std::vector<int32_t>;
  using D = std::vector<double>;
  using R = std::vector<Record>;
  registerSort<int32_t>("int32/fsSort", int32Keys, [n](I &v) { fsSort(FS_SORT_LONG, 0, 4, n, v.data()); });
  registerSort<int32_t>("int32/qsort", int32Keys, [](I &v) { std::qsort(v.data(), v.size(), 4, compareInt32); });
  registerSort<int32_t>("int32/std::sort", int32Keys, [](I &v) { std::sort(v.begin(), v.end()); });
  registerSort<double>("double/fsSort", doubleKeys, [n](D &v) { fsSort(FS_SORT_DOUBLE, 0, 8, n, v.data()); });
  registerSort<double>("double/qsort", doubleKeys, [](D &v) { std::qsort(v.data(), v.size(), 8, compareDouble); });
  registerSort<double>("double/std::sort", doubleKeys, [](D &v) { std::sort(v.begin(), v.end()); });
  registerSort<Record>("record16/fsSort", records, [n](R &v) { fsSort(FS_SORT_LONG, 4, 16, n, v.data()); });
  registerSort<Record>("record16/qsort", records, [](R &v) { std::qsort(v.data(), v.size(), 16, compareRecord); });
  registerSort<Record>("record16/std::sort", records, [](R &v) {
    std::sort(v.begin(), v.end(), [](const Record &a, const Record &b) { return a.key < b.key; });
  });
  registerSort<int32_t>("index_int32/fsSortIndex", index, [n](I &v) {
    fsSortIndex(FS_SORT_LONG, 0, 4, n, indexedInt32, v.data());
  });
  registerSort<int32_t>("index_int32/qsort", index, [](I &v) {
    std::qsort(v.data(), v.size(), 4, compareIndexedInt32);
  });
  registerSort<int32_t>("index_double/fsSortIndex", index, [n](I &v) {
    fsSortIndex(FS_SORT_DOUBLE, 0, 8, n, indexedDouble, v.data());
  });
  registerSort<int32_t>("index_double/qsort", index, [](I &v) {
    std::qsort(v.data(), v.size(), 4, compareIndexedDouble);
  });

  // std::sort on the bare keys is the reference for records and index sorts too.
  return fskit::bench::runWithRatios(argc, argv, {
      {"int32/fsSort", "int32/qsort"},
      {"int32/fsSort", "int32/std::sort"},
      {"double/fsSort", "double/qsort"},
      {"double/fsSort", "double/std::sort"},
      {"record16/fsSort", "record16/qsort"},
      {"record16/fsSort", "int32/std::sort"},
      {"record16/fsSort", "record16/std::sort"},
      {"index_int32/fsSortIndex", "index_int32/qsort"},
      {"index_int32/fsSortIndex", "int32/std::sort"},
      {"index_double/fsSortIndex", "index_double/qsort"},
      {"index_double/fsSortIndex", "double/std::sort"},
  });
}
