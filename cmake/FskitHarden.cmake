# SPDX-License-Identifier: MIT
# Hardening for ELF builds with GCC or clang, added to fskit_options so the
# library and the tool (and the tests, built the same way) get it: the stack
# protector, stack clash protection, relocations made read-only and bound at
# load time, and the checked libc calls of _FORTIFY_SOURCE=3. The checks need
# the optimiser, and the sanitizers do their own, so fortifying is left to the
# optimised builds without a sanitizer; the -U replaces whatever level the
# compiler or the distribution's flags set.
include(CheckCXXCompilerFlag)

set(FSKIT_HARDENED OFF)
if(FSKIT_HARDEN AND CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF"
   AND CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  set(FSKIT_HARDENED ON)
  foreach(flag -fstack-protector-strong -fstack-clash-protection)
    string(MAKE_C_IDENTIFIER "FSKIT_HAS${flag}" has_flag)
    check_cxx_compiler_flag(${flag} ${has_flag})
    if(${has_flag})
      target_compile_options(fskit_options INTERFACE ${flag})
    endif()
  endforeach()
  target_link_options(fskit_options INTERFACE LINKER:-z,relro LINKER:-z,now)
  if(FSKIT_SANITIZE OR FSKIT_TSAN OR FSKIT_FUZZ)
    set(FSKIT_FORTIFY 0)
  else()
    set(FSKIT_FORTIFY "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
  endif()
  target_compile_options(fskit_options INTERFACE
    "$<${FSKIT_FORTIFY}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
endif()
