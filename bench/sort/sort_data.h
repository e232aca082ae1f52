// SPDX-License-Identifier: MIT
// The random keys the typed-sort benchmarks share, so that their figures
// are for the same data.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace fskit::bench {

struct Record {  // 16 bytes, the key at offset 4
  int32_t id;
  int32_t key;
  int64_t payload;
};

struct SortData {
  std::vector<int32_t> int32Keys;
  std::vector<float> floatKeys;
  std::vector<double> doubleKeys;  // in (-1e6, 1e6), no NaNs
  std::vector<Record> records;
};

inline SortData makeSortData(size_t count) {
  SortData data;
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> real(-1e6, 1e6);
  for (size_t k = 0; k < count; ++k) {
    data.int32Keys.push_back(int32_t(random()));
    data.floatKeys.push_back(float(real(random)));
    data.doubleKeys.push_back(real(random));
    data.records.push_back({int32_t(k), int32_t(random()), int64_t(k)});
  }
  return data;
}

}  // namespace fskit::bench
