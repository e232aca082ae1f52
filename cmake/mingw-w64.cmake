# SPDX-License-Identifier: MIT
# Cross-compiling fskit for Windows with Debian's mingw-w64 compilers.
#
#   cmake -S . -B build-win64 --toolchain cmake/mingw-w64.cmake -DFSKIT_WINDOWS_ARCH=x86_64
#
# FSKIT_WINDOWS_ARCH picks the target: i686 (32-bit, the platform of the
# suite's programs) or x86_64. The compilers of the posix thread model are
# preferred (std::thread and std::mutex are there); everything is linked
# statically, so fskit.dll and the programs need no runtime DLL beside the
# system's own. When wine can run the target's programs, it becomes the
# emulator through which CTest runs the tests.

set(FSKIT_WINDOWS_ARCH x86_64 CACHE STRING "Windows target: i686 or x86_64")
set_property(CACHE FSKIT_WINDOWS_ARCH PROPERTY STRINGS i686 x86_64)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES FSKIT_WINDOWS_ARCH)

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${FSKIT_WINDOWS_ARCH})
set(triple ${FSKIT_WINDOWS_ARCH}-w64-mingw32)

find_program(CMAKE_C_COMPILER NAMES ${triple}-gcc-posix ${triple}-gcc REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES ${triple}-g++-posix ${triple}-g++ REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES ${triple}-windres)
find_program(CMAKE_OBJDUMP NAMES ${triple}-objdump objdump)

# Packages for the target only: the mingw-w64 tree, and any root given on the
# command line (-DCMAKE_FIND_ROOT_PATH=...), such as an installed fskit.
list(APPEND CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)

# wine64 runs only 64-bit programs; a 32-bit build is compiled and its
# exports checked, but not run.
if(FSKIT_WINDOWS_ARCH STREQUAL "x86_64")
  find_program(FSKIT_WINE NAMES wine64 wine PATHS /usr/lib/wine /usr/lib64/wine NO_CACHE)
  if(FSKIT_WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run.sh ${FSKIT_WINE})
  endif()
endif()
