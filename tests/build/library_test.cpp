// SPDX-License-Identifier: MIT
// The shared library loaded by name: data and functions work through the addresses found, and
// unloading runs the library's clean-up.
#include <gtest/gtest.h>
#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <cstdint>
#include <string>

#include "tests/support/test_support.h"

namespace {

#if defined(_WIN32)
using Handle = HMODULE;
Handle load() { return LoadLibraryA(FSKIT_LIBRARY_PATH); }
void *symbol(Handle h, const char *name) { return reinterpret_cast<void *>(GetProcAddress(h, name)); }
void unload(Handle h) { FreeLibrary(h); }
#else
using Handle = void *;
Handle load() { return dlopen(FSKIT_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL); }
void *symbol(Handle h, const char *name) { return dlsym(h, name); }
void unload(Handle h) { dlclose(h); }
#endif

}  // namespace

TEST(Library, FunctionsAndDataWorkByNameAndUnloadingCleansUp) {
  Handle library = load();
  ASSERT_NE(library, nullptr) << FSKIT_LIBRARY_PATH;
  auto getPlatform = reinterpret_cast<void (*)(char *, char *, char *)>(symbol(library, "fsGetPlatform"));
  auto bitCounts = static_cast<const uint8_t *>(symbol(library, "FsBitCounts"));
  ASSERT_TRUE(getPlatform != nullptr && bitCounts != nullptr);
  char os[8] = "", order[8] = "", format[8] = "";
  getPlatform(os, order, format);
  EXPECT_EQ(std::string(os) + " " + order + " " + format, "winnt little ieee");
  EXPECT_EQ(bitCounts[0xff] + bitCounts[0x81], 10);

  // A file sort registers the clean-up of its work files for the unload: one still there goes.
  using StrSort = long (*)(const char *, const char *, const char *, long, uint8_t, uint8_t);
  auto strSort = reinterpret_cast<StrSort>(symbol(library, "fsStrSort"));
  ASSERT_NE(strSort, nullptr);
  fskit::test::TempDir dir;
  std::string prefix = dir.path() + "/";
  std::string in = dir.file("in.txt"), out = dir.file("out.txt");
  fskit::test::writeFile(in, "b\na\n");
  long sorted = 0;
  fskit::test::captureStdout([&] { sorted = strSort(in.c_str(), out.c_str(), prefix.c_str(), 0, 1, 0); });
  EXPECT_EQ(sorted, 2);
  std::string leftOver = dir.file("sort_3.tmp");
  fskit::test::writeFile(leftOver, "x\n");
  unload(library);
  EXPECT_FALSE(fskit::test::fileExists(leftOver));
  EXPECT_TRUE(fskit::test::fileExists(out));
}
