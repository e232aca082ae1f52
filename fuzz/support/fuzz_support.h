// SPDX-License-Identifier: MIT
// The fuzz targets' entry point, invariant checks that stop the run, exact-size copies of the
// input, caught output and a scratch directory.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <stdlib.h>

// FUZZ_TARGET(input) { ... }: the body runs on each input, as a string_view.
#define FUZZ_TARGET(input)                                                       \
  static void fuzzOne(std::string_view input);                                   \
  extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {      \
    fuzzOne(std::string_view(reinterpret_cast<const char *>(data), size));       \
    return 0;                                                                    \
  }                                                                              \
  static void fuzzOne(std::string_view input)

// A broken invariant ends the run like a crash, so libFuzzer keeps the input.
#define FUZZ_CHECK(condition)                                                                 \
  do {                                                                                        \
    if (!(condition)) {                                                                       \
      std::fprintf(::stderr, "%s:%d: invariant broken: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                           \
    }                                                                                         \
  } while (0)

namespace fskit::fuzz {

// A NUL-terminated heap copy with no spare room, so the address sanitizer sees a read or write
// one byte past the text's NUL. Bytes after a NUL in `bytes` lie beyond the text.
class Text {
 public:
  explicit Text(std::string_view bytes) : Text(bytes.size() + 1, '\0') {
    if (!bytes.empty()) std::memcpy(data_.get(), bytes.data(), bytes.size());
  }
  // A buffer of `size` bytes filled with `fill`, for a function's output.
  Text(size_t size, char fill) : size_(size), data_(new char[size]) {
    std::memset(data_.get(), fill, size);
  }
  char *get() { return data_.get(); }
  const char *get() const { return data_.get(); }
  size_t size() const { return size_; }
  std::string_view str() const { return data_.get(); }

 private:
  size_t size_;
  std::unique_ptr<char[]> data_;
};

// The bytes before the input's first NUL and those after; without a NUL, `fallback` and all.
inline std::pair<std::string_view, std::string_view> splitAtNul(std::string_view input,
                                                                 std::string_view fallback) {
  size_t nul = input.find('\0');
  if (nul == std::string_view::npos) return {fallback, input};
  return {input.substr(0, nul), input.substr(nul + 1)};
}

// Takes one byte off the front of the input (0 when it is empty).
inline uint8_t takeByte(std::string_view &input) {
  if (input.empty()) return 0;
  uint8_t byte = uint8_t(input.front());
  input.remove_prefix(1);
  return byte;
}

// What `write` writes on the stream it is given, caught in memory.
template <typename Write>
std::string writtenTo(Write write) {
  char *buffer = nullptr;
  size_t length = 0;
  std::FILE *memory = open_memstream(&buffer, &length);
  FUZZ_CHECK(memory != nullptr);
  write(memory);
  std::fclose(memory);
  std::string text(buffer, length);
  std::free(buffer);
  return text;
}

// What `body` prints through stdio on `stream` (stdout or stderr), caught in memory; the
// sanitizers' reports still reach descriptor 2.
template <typename Body>
std::string caughtStream(std::FILE *&stream, Body body) {
  std::fflush(stream);
  return writtenTo([&](std::FILE *memory) {
    std::FILE *saved = stream;
    stream = memory;
    body();
    stream = saved;
  });
}

// `name` in the run's own directory, removed at exit: in memory where /dev/shm exists (a file
// is written for every input).
inline std::string scratchFile(const char *name) {
  static const std::string directory = [] {
    char memory[] = "/dev/shm/fskit-fuzz-XXXXXX", disk[] = "/tmp/fskit-fuzz-XXXXXX";
    const char *made = mkdtemp(memory);
    if (made == nullptr) made = mkdtemp(disk);
    FUZZ_CHECK(made != nullptr);
    return std::string(made);
  }();
  // Registered once the directory's name is made, so that it runs before the name is destroyed.
  static const bool removedAtExit = [] {
    return std::atexit([] { std::filesystem::remove_all(directory); }) == 0;
  }();
  FUZZ_CHECK(removedAtExit);
  return directory + "/" + name;
}

inline void writeBytes(const std::string &path, std::string_view bytes) {
  std::FILE *out = std::fopen(path.c_str(), "wb");
  FUZZ_CHECK(out != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size());
  std::fclose(out);
}

}  // namespace fskit::fuzz

using namespace fskit::fuzz;  // each target is a program of its own
