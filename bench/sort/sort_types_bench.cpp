// SPDX-License-Identifier: MIT
// fsSort and fsSortIndex for every numeric sort type, both directions, on
// 4 million random keys: keys stored alone, keys in 16-byte records and
// element numbers sorted by key. std::sort on the bare keys of the same C
// type is the reference for each. Float keys are finite numbers.
#include <fskit/sort.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "bench/common/ratios.h"
#include "bench/sort/register_sort.h"

namespace {

constexpr size_t kCount = 4'000'000;
constexpr int kRecordSize = 16, kRecordOffset = 4;

using Bytes = std::vector<unsigned char>;

// Each iteration sorts a fresh copy of `input`.
void registerSort(const std::string &name, const Bytes &input, std::function<void(Bytes &)> sort) {
  fskit::bench::registerSort(name, input, sort, 5);
}

template <class T> void fillKeys(Bytes &keys, std::mt19937_64 &random) {
  keys.resize(kCount * sizeof(T));
  for (size_t k = 0; k < kCount; ++k) {
    T value;
    if constexpr (std::is_floating_point_v<T>)
      value = T(std::uniform_real_distribution<double>(-1e6, 1e6)(random));
    else
      value = T(random());
    std::memcpy(&keys[k * sizeof(T)], &value, sizeof value);
  }
}

struct TypeCase {
  const char *name;
  int type;  // the ascending sort type; the descending one follows it
  int width;
  void (*fill)(Bytes &, std::mt19937_64 &);
  void (*reference)(Bytes &);
};

template <class T> void referenceSort(Bytes &keys) {
  T *values = reinterpret_cast<T *>(keys.data());
  std::sort(values, values + keys.size() / sizeof(T));
}

#define FSKIT_TYPE(name, type, T) {name, type, int(sizeof(T)), fillKeys<T>, referenceSort<T>}
const TypeCase kTypes[] = {
    FSKIT_TYPE("int8", FS_SORT_CHAR, int8_t),     FSKIT_TYPE("uint8", FS_SORT_UCHAR, uint8_t),
    FSKIT_TYPE("int16", FS_SORT_SHORT, int16_t),  FSKIT_TYPE("uint16", FS_SORT_USHORT, uint16_t),
    FSKIT_TYPE("int32", FS_SORT_LONG, int32_t),   FSKIT_TYPE("uint32", FS_SORT_ULONG, uint32_t),
    FSKIT_TYPE("float", FS_SORT_FLOAT, float),    FSKIT_TYPE("double", FS_SORT_DOUBLE, double),
};
#undef FSKIT_TYPE

// Inputs live as long as the benchmarks that read them.
struct Inputs {
  Bytes keys, records, index;
};
Inputs inputs[std::size(kTypes)];

}  // namespace

int main(int argc, char **argv) {
  std::mt19937_64 random(1);
  std::vector<fskit::bench::Ratio> ratios;
  std::vector<int32_t> identity(kCount);
  std::iota(identity.begin(), identity.end(), 0);
  const int n = int(kCount);
  for (size_t t = 0; t < std::size(kTypes); ++t) {
    const TypeCase &c = kTypes[t];
    Inputs &in = inputs[t];
    c.fill(in.keys, random);
    in.records.resize(kCount * kRecordSize);
    for (size_t k = 0; k < kCount; ++k) {
      for (int b = 0; b < kRecordSize; ++b) in.records[k * kRecordSize + size_t(b)] = uint8_t(random());
      std::memcpy(&in.records[k * kRecordSize + kRecordOffset], &in.keys[k * size_t(c.width)], size_t(c.width));
    }
    in.index.resize(kCount * sizeof(int32_t));
    std::memcpy(in.index.data(), identity.data(), in.index.size());

    std::string reference = std::string(c.name) + "/std::sort";
    registerSort(reference, in.keys, c.reference);
    for (int down = 0; down < 2; ++down) {
      int type = c.type + down;
      std::string prefix = std::string(c.name) + (down ? "_desc" : "") + "/";
      const unsigned char *keys = in.keys.data();
      int width = c.width;
      registerSort(prefix + "fsSort", in.keys, [=](Bytes &v) { fsSort(type, 0, width, n, v.data()); });
      registerSort(prefix + "fsSort_record16", in.records,
                   [=](Bytes &v) { fsSort(type, kRecordOffset, kRecordSize, n, v.data()); });
      registerSort(prefix + "fsSortIndex", in.index, [=](Bytes &v) {
        fsSortIndex(type, 0, width, n, keys, reinterpret_cast<int32_t *>(v.data()));
      });
      for (const char *what : {"fsSort", "fsSort_record16", "fsSortIndex"})
        ratios.push_back({prefix + what, reference});
    }
  }
  return fskit::bench::runWithRatios(argc, argv, ratios);
}
