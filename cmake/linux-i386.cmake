# SPDX-License-Identifier: MIT
# A 32-bit x86 build on a 64-bit Linux host with the multilib compilers
# (Debian: gcc-multilib g++-multilib), the word size the library's callers
# were written for.
#
#   cmake -S . -B build-i386 --toolchain cmake/linux-i386.cmake
#
# Only the flags change, so CMake still runs the programs it builds (the host
# runs 32-bit code) and the tests run as they do natively. The flags are the
# compile and link flags of this build tree alone: nothing the library
# installs (fskit.pc, the CMake package) carries them.
# FSKIT_ARCH_FLAGS is handed to the tests that build programs against the
# installed library, so that those are 32-bit too.
set(FSKIT_ARCH_FLAGS "-m32")
foreach(kind C CXX EXE_LINKER SHARED_LINKER MODULE_LINKER)
  set(CMAKE_${kind}_FLAGS_INIT "${FSKIT_ARCH_FLAGS}")
endforeach()
