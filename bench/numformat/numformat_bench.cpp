// SPDX-License-Identifier: MIT
// Each converter turns a 64 MB array value by value, one call through the
// shared library per value as callers do, and is reported next to two floors
// measured in the same run: a byte swap of the same size called the same way
// from a small shared library of the benchmark's own (the call floor), and a
// plain byte-swap loop with no call at all. The sources hold the values that
// data files hold, so the converters take their common paths.
//
// Run: build/bench/numformat/numformat_bench [--benchmark_repetitions=N]
// The table at the end gives values per second and the time per value as a
// ratio to the call floor of the same value size (median of repetitions).
#include <benchmark/benchmark.h>
#include <fskit/numformat.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bench/numformat/call_floor.h"

namespace {

constexpr size_t kArrayBytes = size_t(64) << 20;

std::vector<unsigned char> sourceBuffer, destinationBuffer;
std::mt19937_64 randomBits(2024);

template <typename T>
void put(unsigned char *at, T value) {
  std::memcpy(at, &value, sizeof value);
}

// Magnitudes from 1e-3 to 1e6, evenly spread in the logarithm.
double sampleMagnitude() {
  return std::pow(10.0, std::uniform_real_distribution<double>(-3.0, 6.0)(randomBits));
}
double sampleSigned() { return randomBits() & 1 ? sampleMagnitude() : -sampleMagnitude(); }

void fillFloats(unsigned char *at, size_t n) {
  for (size_t i = 0; i < n; ++i) put(at + 4 * i, float(sampleSigned()));
}
void fillDoubles(unsigned char *at, size_t n) {
  for (size_t i = 0; i < n; ++i) put(at + 8 * i, sampleSigned());
}
void fillVaxFloats(unsigned char *at, size_t n) {
  fillFloats(at, n);
  for (size_t i = 0; i < n; ++i) encodeVaxFloat(at + 4 * i, nullptr);
}
void fillVaxDoubles(unsigned char *at, size_t n) {
  fillDoubles(at, n);
  for (size_t i = 0; i < n; ++i) encodeVaxDouble(at + 8 * i, nullptr);
}
template <size_t size>
void fillRandom(unsigned char *at, size_t n) {
  for (size_t i = 0; i < n * size; ++i) at[i] = uint8_t(randomBits());
}
// Normalised Nova numbers from 16^-3 to 16^5, most significant byte first.
template <size_t size>
void fillNova(unsigned char *at, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    uint64_t word = randomBits() | uint64_t(1) << 52;  // a leading hex digit
    word = (word & 0x80FFFFFFFFFFFFFFu) | uint64_t(61 + randomBits() % 9) << 56;
    for (size_t b = 0; b < size; ++b) at[size * i + b] = uint8_t(word >> (56 - 8 * b));
  }
}
void fillIntensities(unsigned char *at, size_t n) {
  for (size_t i = 0; i < n; ++i) put(at + 4 * i, float(sampleMagnitude() * 1000.0));
}

// Record encoding reads three arrays: masses, intensities, flags.
struct RecordInputs {
  double *mass;
  float *intensity;
  uint8_t *flags;
};
RecordInputs recordInputs(unsigned char *at, size_t n) {
  return {reinterpret_cast<double *>(at), reinterpret_cast<float *>(at + 8 * n), at + 12 * n};
}
void fillRecordInputs(unsigned char *at, size_t n) {
  RecordInputs in = recordInputs(at, n);
  for (size_t i = 0; i < n; ++i) {
    in.mass[i] = 50.0 + sampleMagnitude() / 500.0;
    in.intensity[i] = float(sampleMagnitude() * 1000.0);
    in.flags[i] = uint8_t(randomBits() & 3);
  }
}
void fillRecords(unsigned char *at, size_t n) {
  std::vector<unsigned char> inputs(13 * n);
  fillRecordInputs(inputs.data(), n);
  RecordInputs in = recordInputs(inputs.data(), n);
  for (size_t i = 0; i < n; ++i)
    encodeQuorMassInty(&in.mass[i], &in.intensity[i], &in.flags[i], at + 6 * i);
}

// One call per value, strides known at compile time as in a caller's loop.
template <auto convert, size_t inSize, size_t outSize>
void eachValue(unsigned char *in, unsigned char *out, size_t n) {
  for (size_t i = 0; i < n; ++i) convert(in + inSize * i, out + outSize * i);
}
void decodeRecords(unsigned char *in, unsigned char *out, size_t n) {
  RecordInputs to = recordInputs(out, n);
  for (size_t i = 0; i < n; ++i) decodeQuorMassInty(in + 6 * i, &to.mass[i], &to.intensity[i], &to.flags[i]);
}
void encodeRecords(unsigned char *in, unsigned char *out, size_t n) {
  RecordInputs from = recordInputs(in, n);
  for (size_t i = 0; i < n; ++i)
    encodeQuorMassInty(&from.mass[i], &from.intensity[i], &from.flags[i], out + 6 * i);
}
// The plain loop: what the same work costs with no call per value.
template <typename T>
void swapLoop(unsigned char *in, unsigned char *out, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    T value;
    std::memcpy(&value, in + sizeof(T) * i, sizeof value);
    if constexpr (sizeof(T) == 2) value = __builtin_bswap16(value);
    if constexpr (sizeof(T) == 4) value = __builtin_bswap32(value);
    if constexpr (sizeof(T) == 8) value = __builtin_bswap64(value);
    std::memcpy(out + sizeof(T) * i, &value, sizeof value);
  }
}

struct Case {
  const char *name;
  size_t valueSize;  // picks the floors compared with
  size_t arrayValueBytes;  // the 64 MB array holds values of this size
  size_t sourceBytesPerValue, destinationBytesPerValue;
  void (*fill)(unsigned char *at, size_t n);
  void (*run)(unsigned char *in, unsigned char *out, size_t n);
};

#define FSKIT_CONVERT(fn, in, out, fill) {#fn, in, in, in, out, fill, eachValue<fn, in, out>}
const Case kCases[] = {
    {"call floor 2", 2, 2, 2, 2, fillRandom<2>, eachValue<floorSwap16, 2, 2>},
    {"call floor 4", 4, 4, 4, 4, fillRandom<4>, eachValue<floorSwap32, 4, 4>},
    {"call floor 8", 8, 8, 8, 8, fillRandom<8>, eachValue<floorSwap64, 8, 8>},
    {"swap loop 2", 2, 2, 2, 2, fillRandom<2>, swapLoop<uint16_t>},
    {"swap loop 4", 4, 4, 4, 4, fillRandom<4>, swapLoop<uint32_t>},
    {"swap loop 8", 8, 8, 8, 8, fillRandom<8>, swapLoop<uint64_t>},
    FSKIT_CONVERT(encodeVaxFloat, 4, 4, fillFloats),
    FSKIT_CONVERT(decodeVaxFloat, 4, 4, fillVaxFloats),
    FSKIT_CONVERT(encodeVaxDouble, 8, 8, fillDoubles),
    FSKIT_CONVERT(decodeVaxDouble, 8, 8, fillVaxDoubles),
    FSKIT_CONVERT(decodeIeeeFloat, 4, 4, fillFloats),
    FSKIT_CONVERT(decodeIeeeDouble, 8, 8, fillDoubles),
    FSKIT_CONVERT(decodeHpShort, 2, 2, fillRandom<2>),
    FSKIT_CONVERT(decodeHpLong, 4, 4, fillRandom<4>),
    FSKIT_CONVERT(decodeHpDouble, 8, 8, fillRandom<8>),
    FSKIT_CONVERT(encodeHpDouble, 8, 8, fillRandom<8>),
    FSKIT_CONVERT(decodeNovaFloat, 4, 4, fillNova<4>),
    FSKIT_CONVERT(decodeNovaDouble, 8, 8, fillNova<8>),
    FSKIT_CONVERT(decodeIncosMagMass, 2, 4, fillRandom<2>),
    FSKIT_CONVERT(decodeQuorInty, 2, 4, fillRandom<2>),
    FSKIT_CONVERT(encodeQuorInty, 4, 2, fillIntensities),
    {"decodeQuorMassInty", 8, 6, 6, 13, fillRecords, decodeRecords},
    {"encodeQuorMassInty", 8, 6, 13, 6, fillRecordInputs, encodeRecords},
};
#undef FSKIT_CONVERT

void runCase(benchmark::State &state, const Case &c) {
  size_t n = kArrayBytes / c.arrayValueBytes;
  sourceBuffer.resize(std::max(sourceBuffer.size(), n * c.sourceBytesPerValue));
  destinationBuffer.resize(std::max(destinationBuffer.size(), n * c.destinationBytesPerValue));
  c.fill(sourceBuffer.data(), n);
  std::memset(destinationBuffer.data(), 0, n * c.destinationBytesPerValue);
  for (auto _ : state) {
    c.run(sourceBuffer.data(), destinationBuffer.data(), n);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(n));
}

// Keeps every run's rate while the console shows the usual report.
class RateCollector : public benchmark::ConsoleReporter {
 public:
  std::map<std::string, std::vector<double>> rates;
  void ReportRuns(const std::vector<Run> &runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run &run : runs)
      if (run.run_type == Run::RT_Iteration && !run.error_occurred)
        rates[run.run_name.str()].push_back(run.counters.at("items_per_second"));
  }
  double median(const std::string &name) {
    auto &all = rates[name];
    if (all.empty()) return 0;
    std::sort(all.begin(), all.end());
    return all[all.size() / 2];
  }
};

}  // namespace

int main(int argc, char **argv) {
  for (const Case &c : kCases)
    benchmark::RegisterBenchmark(c.name, [&c](benchmark::State &state) { runCase(state, c); })
        ->Unit(benchmark::kMillisecond);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RateCollector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);
  benchmark::Shutdown();

  std::printf("\n%-20s %12s %12s %12s\n", "converter", "Mvalues/s", "/call floor",
              "/swap loop");
  for (const Case &c : kCases) {
    double rate = collector.median(c.name);
    if (rate == 0) continue;
    std::string size = std::to_string(c.valueSize);
    double callFloor = collector.median("call floor " + size);
    double swapLoop = collector.median("swap loop " + size);
    // Time per value relative to the floors: 1.00 costs what a bare call costs.
    std::printf("%-20s %12.1f %12.2f %12.2f\n", c.name, rate / 1e6,
                callFloor > 0 ? callFloor / rate : 0.0, swapLoop > 0 ? swapLoop / rate : 0.0);
  }
  return 0;
}
