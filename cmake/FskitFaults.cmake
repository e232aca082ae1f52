# SPDX-License-Identifier: MIT
# Fault injection for test and fuzz programs, never for the library: the
# program is linked with --wrap for the C library's allocation functions,
# whose wrappers (tests/support/alloc_fault.cpp, which also gives the program
# an operator new over malloc) count the calls and fail those a test asks for.
#
# fskit_inject_faults(<target> [WRAP <more C library functions...>])
# The functions after WRAP are wrapped too: the program defines
# __wrap_<name> and reaches the C library's as __real_<name>.
function(fskit_inject_faults target)
  cmake_parse_arguments(ARG "" "" "WRAP" ${ARGN})
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/alloc_fault.cpp)
  foreach(function IN ITEMS malloc calloc realloc strdup LISTS ARG_WRAP)
    target_link_options(${target} PRIVATE -Wl,--wrap=${function})
  endforeach()
endfunction()
