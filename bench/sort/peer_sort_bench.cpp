// SPDX-License-Identifier: MIT
// fsSort and fsSortIndex against the fastest single-thread sorts a user can
// install from Debian, on the same 10 million random keys: pdqsort
// (pdqsort-dev), Highway's vqsort (libhwy-dev) and Boost's spreadsort
// (libboost-dev). A peer that is not installed is left out; the ratios at the
// end are peer time / fskit time (above 1: fskit is faster).
//
// The index sorts of the peers give what fsSortIndex gives, an index in key
// order: pdqsort sorts the index by a comparison of the keys, vqsort sorts
// (key, index) pairs whose keys are the keys' bits made to order as unsigned
// numbers, and their time includes making the pairs and reading the index
// back out of them.
#include <fskit/sort.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#if FSKIT_BENCH_PDQSORT
#include <pdqsort.h>
#endif
#if FSKIT_BENCH_VQSORT
#include <hwy/contrib/sort/vqsort.h>
#endif
#if FSKIT_BENCH_SPREADSORT
#include <boost/sort/spreadsort/spreadsort.hpp>
#endif

#include "bench/common/ratios.h"
#include "bench/sort/register_sort.h"
#include "bench/sort/sort_data.h"

namespace {

constexpr size_t kCount = 10'000'000;
constexpr int kIterations = 3;

using fskit::bench::Record;
const fskit::bench::SortData data = fskit::bench::makeSortData(kCount);
const std::vector<int32_t> &int32Keys = data.int32Keys;
const std::vector<float> &floatKeys = data.floatKeys;
const std::vector<double> &doubleKeys = data.doubleKeys;
const std::vector<Record> &records = data.records;
std::vector<int32_t> identity;
std::vector<std::string> peers;  // the peers this build has, as named in the rows

template <class T>
void add(const std::string &name, const std::vector<T> &input,
         std::function<void(std::vector<T> &)> sort) {
  fskit::bench::registerSort(name, input, sort, kIterations);
}

void addPeer(const std::string &peer) {
  if (std::find(peers.begin(), peers.end(), peer) == peers.end()) peers.push_back(peer);
}

// Keys that order as unsigned numbers the way the values order (negative
// zero before positive; no NaNs in this data).
[[maybe_unused]] uint32_t orderedBits(int32_t key) { return uint32_t(key) ^ 0x80000000u; }
[[maybe_unused]] uint64_t orderedBits(double key) {
  uint64_t bits = std::bit_cast<uint64_t>(key);
  return bits >> 63 ? ~bits : bits | uint64_t(1) << 63;
}

void addFskitRows() {
  const int n = int(kCount);
  using I = std::vector<int32_t>;
  using F = std::vector<float>;
  using D = std::vector<double>;
  using R = std::vector<Record>;
  add<int32_t>("int32/fskit", int32Keys, [n](I &v) { fsSort(FS_SORT_LONG, 0, 4, n, v.data()); });
  add<int32_t>("int32_desc/fskit", int32Keys,
               [n](I &v) { fsSort(FS_SORT_LONG_DESC, 0, 4, n, v.data()); });
  add<float>("float/fskit", floatKeys, [n](F &v) { fsSort(FS_SORT_FLOAT, 0, 4, n, v.data()); });
  add<float>("float_desc/fskit", floatKeys,
             [n](F &v) { fsSort(FS_SORT_FLOAT_DESC, 0, 4, n, v.data()); });
  add<double>("double/fskit", doubleKeys, [n](D &v) { fsSort(FS_SORT_DOUBLE, 0, 8, n, v.data()); });
  add<double>("double_desc/fskit", doubleKeys,
              [n](D &v) { fsSort(FS_SORT_DOUBLE_DESC, 0, 8, n, v.data()); });
  add<Record>("record16/fskit", records, [n](R &v) { fsSort(FS_SORT_LONG, 4, 16, n, v.data()); });
  add<int32_t>("index_int32/fskit", identity, [n](I &v) {
    fsSortIndex(FS_SORT_LONG, 0, 4, n, int32Keys.data(), v.data());
  });
  add<int32_t>("index_double/fskit", identity, [n](I &v) {
    fsSortIndex(FS_SORT_DOUBLE, 0, 8, n, doubleKeys.data(), v.data());
  });
}

#if FSKIT_BENCH_PDQSORT
void addPdqsortRows() {
  addPeer("pdqsort");
  add<int32_t>("int32/pdqsort", int32Keys, [](auto &v) { pdqsort(v.begin(), v.end()); });
  add<int32_t>("int32_desc/pdqsort", int32Keys,
               [](auto &v) { pdqsort(v.begin(), v.end(), std::greater<>()); });
  add<float>("float/pdqsort", floatKeys, [](auto &v) { pdqsort(v.begin(), v.end()); });
  add<float>("float_desc/pdqsort", floatKeys,
             [](auto &v) { pdqsort(v.begin(), v.end(), std::greater<>()); });
  add<double>("double/pdqsort", doubleKeys, [](auto &v) { pdqsort(v.begin(), v.end()); });
  add<double>("double_desc/pdqsort", doubleKeys,
              [](auto &v) { pdqsort(v.begin(), v.end(), std::greater<>()); });
  add<Record>("record16/pdqsort", records, [](auto &v) {
    pdqsort(v.begin(), v.end(), [](const Record &a, const Record &b) { return a.key < b.key; });
  });
  add<int32_t>("index_int32/pdqsort", identity, [](auto &v) {
    const int32_t *keys = int32Keys.data();
    pdqsort(v.begin(), v.end(), [keys](int32_t a, int32_t b) { return keys[a] < keys[b]; });
  });
  add<int32_t>("index_double/pdqsort", identity, [](auto &v) {
    const double *keys = doubleKeys.data();
    pdqsort(v.begin(), v.end(), [keys](int32_t a, int32_t b) { return keys[a] < keys[b]; });
  });
}
#endif

#if FSKIT_BENCH_VQSORT
void addVqsortRows() {
  addPeer("vqsort");
  static const hwy::Sorter sorter;
  add<int32_t>("int32/vqsort", int32Keys,
               [](auto &v) { sorter(v.data(), v.size(), hwy::SortAscending()); });
  add<int32_t>("int32_desc/vqsort", int32Keys,
               [](auto &v) { sorter(v.data(), v.size(), hwy::SortDescending()); });
  add<float>("float/vqsort", floatKeys,
             [](auto &v) { sorter(v.data(), v.size(), hwy::SortAscending()); });
  add<float>("float_desc/vqsort", floatKeys,
             [](auto &v) { sorter(v.data(), v.size(), hwy::SortDescending()); });
  add<double>("double/vqsort", doubleKeys,
              [](auto &v) { sorter(v.data(), v.size(), hwy::SortAscending()); });
  add<double>("double_desc/vqsort", doubleKeys,
              [](auto &v) { sorter(v.data(), v.size(), hwy::SortDescending()); });
  // (key, index) packed into one 64-bit number, key above.
  add<int32_t>("index_int32/vqsort", identity, [](auto &v) {
    std::vector<uint64_t> pairs(v.size());
    for (size_t i = 0; i < v.size(); ++i)
      pairs[i] = uint64_t(orderedBits(int32Keys[size_t(v[i])])) << 32 | uint32_t(v[i]);
    sorter(pairs.data(), pairs.size(), hwy::SortAscending());
    for (size_t i = 0; i < v.size(); ++i) v[i] = int32_t(uint32_t(pairs[i]));
  });
  add<int32_t>("index_double/vqsort", identity, [](auto &v) {
    std::vector<hwy::K64V64> pairs(v.size());
    for (size_t i = 0; i < v.size(); ++i)
      pairs[i] = {uint64_t(uint32_t(v[i])), orderedBits(doubleKeys[size_t(v[i])])};
    sorter(pairs.data(), pairs.size(), hwy::SortAscending());
    for (size_t i = 0; i < v.size(); ++i) v[i] = int32_t(pairs[i].value);
  });
}
#endif

#if FSKIT_BENCH_SPREADSORT
void addSpreadsortRows() {
  namespace spread = boost::sort::spreadsort;
  addPeer("spreadsort");
  add<int32_t>("int32/spreadsort", int32Keys, [](auto &v) { spread::integer_sort(v.begin(), v.end()); });
  add<float>("float/spreadsort", floatKeys, [](auto &v) { spread::float_sort(v.begin(), v.end()); });
  add<double>("double/spreadsort", doubleKeys, [](auto &v) { spread::float_sort(v.begin(), v.end()); });
  add<Record>("record16/spreadsort", records, [](auto &v) {
    spread::integer_sort(
        v.begin(), v.end(), [](const Record &r, unsigned offset) { return r.key >> offset; },
        [](const Record &a, const Record &b) { return a.key < b.key; });
  });
}
#endif

}  // namespace

int main(int argc, char **argv) {
  identity.resize(kCount);
  std::iota(identity.begin(), identity.end(), 0);
  addFskitRows();
#if FSKIT_BENCH_PDQSORT
  addPdqsortRows();
#endif
#if FSKIT_BENCH_VQSORT
  addVqsortRows();
#endif
#if FSKIT_BENCH_SPREADSORT
  addSpreadsortRows();
#endif
  // Against each peer, then against the fastest peer of each row.
  const char *const rows[] = {"int32",       "int32_desc", "float",       "float_desc",  "double",
                              "double_desc", "record16",   "index_int32", "index_double"};
  std::vector<fskit::bench::Ratio> ratios;
  for (const std::string &peer : peers)
    for (std::string row : rows) ratios.push_back({row + "/fskit", row + "/" + peer});
  for (std::string row : rows) {
    std::string fastest;
    for (const std::string &peer : peers) fastest += (fastest.empty() ? "" : "|") + row + "/" + peer;
    ratios.push_back({row + "/fskit", fastest});
  }
  return fskit::bench::runWithRatios(argc, argv, ratios);
}
