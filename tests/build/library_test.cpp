// The shared library as a program that loads it by name sees it: every name
// of exports.txt can be looked up, the data and the functions work through
// the addresses found, and unloading runs the library's clean-up.
#include <gtest/gtest.h>
#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

#include "tests/support/test_support.h"

namespace {

class LoadedLibrary {
 public:
#if defined(_WIN32)
  LoadedLibrary() : handle_(LoadLibraryA(FSKIT_LIBRARY_PATH)) {}
  void *symbol(const char *name) const {
    return reinterpret_cast<void *>(GetProcAddress(handle_, name));
  }
  void unload() {
    if (handle_ != nullptr) FreeLibrary(handle_);
    handle_ = nullptr;
  }
#else
  LoadedLibrary() : handle_(dlopen(FSKIT_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL)) {}
  void *symbol(const char *name) const { return dlsym(handle_, name); }
  void unload() {
    if (handle_ != nullptr) dlclose(handle_);
    handle_ = nullptr;
  }
#endif
  ~LoadedLibrary() { unload(); }
  LoadedLibrary(const LoadedLibrary &) = delete;
  LoadedLibrary &operator=(const LoadedLibrary &) = delete;
  bool loaded() const { return handle_ != nullptr; }

 private:
#if defined(_WIN32)
  HMODULE handle_;
#else
  void *handle_;
#endif
};

}  // namespace

TEST(Library, EveryListedNameIsFoundAndUnloadingCleansUp) {
  LoadedLibrary library;
  ASSERT_TRUE(library.loaded()) << FSKIT_LIBRARY_PATH;
  std::ifstream list(FSKIT_SOURCE_DIR "/exports.txt");
  int names = 0;
  for (std::string name; std::getline(list, name);) {
    if (name.empty() || name[0] == '#') continue;
    ++names;
    EXPECT_NE(library.symbol(name.c_str()), nullptr) << name;
  }
  EXPECT_GT(names, 100);  // the list was read

  auto getPlatform = reinterpret_cast<void (*)(char *, char *, char *)>(library.symbol("fsGetPlatform"));
  auto bitCounts = static_cast<const uint8_t *>(library.symbol("FsBitCounts"));
  ASSERT_TRUE(getPlatform != nullptr && bitCounts != nullptr);
  char os[8] = "", order[8] = "", format[8] = "";
  getPlatform(os, order, format);
  EXPECT_EQ(std::string(os) + " " + order + " " + format, "winnt little ieee");
  EXPECT_EQ(bitCounts[0xff] + bitCounts[0x81], 10);

  // A file sort registers the clean-up of its work files for the unload: a
  // work file that is still there then goes.
  using StrSort = long (*)(const char *, const char *, const char *, long, uint8_t, uint8_t);
  auto strSort = reinterpret_cast<StrSort>(library.symbol("fsStrSort"));
  ASSERT_NE(strSort, nullptr);
  fskit::test::TempDir dir;
  fskit::test::writeFile(dir.file("in.txt"), "b\na\n");
  std::string prefix = dir.path() + "/";
  fskit::test::captureStdout([&] {
    EXPECT_EQ(strSort(dir.file("in.txt").c_str(), dir.file("out.txt").c_str(), prefix.c_str(), 0,
                      1, 0),
              2);
  });
  std::string leftOver = dir.file("sort_3.tmp");
  fskit::test::writeFile(leftOver, "x\n");
  library.unload();
  EXPECT_FALSE(fskit::test::fileExists(leftOver));
  EXPECT_TRUE(fskit::test::fileExists(dir.file("out.txt")));
}
