# SPDX-License-Identifier: MIT
# Shared compile settings and the family helper.
#
# Every family is an OBJECT library `fskit_<family>`; the shared and the static
# library are built from the objects of all families, and a family's tests link
# only the families it depends on, so each dependency is written down once.

# Warnings and sanitizers for everything the project compiles: library, tool,
# tests and benchmarks.
add_library(fskit_options INTERFACE)
target_compile_options(fskit_options INTERFACE -Wall -Wextra)
if(FSKIT_WERROR)
  target_compile_options(fskit_options INTERFACE -Werror)
endif()
if(UNIX AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  # A 32-bit C library counts seconds and file offsets in 32 bits unless asked
  # otherwise: files dated after January 2038 and files over 2 GiB would fail
  # or wrap. No time_t, off_t or struct stat crosses the C interface, so the
  # choice stays inside the library and its tests.
  target_compile_definitions(fskit_options INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i.86)$")
    # GCC's 32-bit x86 code computes doubles on the x87 unit in 80 bits and
    # rounds them only when they leave a register, so a mass or a converted
    # number could differ in its last bit from a 64-bit build, and with the
    # optimiser's choices. SSE2 computes each double operation exactly as the
    # 64-bit build does; every x86 processor of this century has it.
    target_compile_options(fskit_options INTERFACE -msse2 -mfpmath=sse)
  endif()
endif()
if(WIN32 AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC for Windows analyses a dllexport function before the aliases declared
  # after it, then finds each alias "less restrictive" for lacking the nothrow
  # it inferred. An alias is the same code, so the warning says nothing.
  target_compile_options(fskit_options INTERFACE -Wno-missing-attributes)
endif()
include(${CMAKE_CURRENT_LIST_DIR}/FskitHarden.cmake)
if(FSKIT_SANITIZE)
  target_compile_options(fskit_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(fskit_options INTERFACE -fsanitize=address,undefined)
endif()
if(FSKIT_TSAN)
  if(FSKIT_SANITIZE)
    message(FATAL_ERROR "FSKIT_TSAN and FSKIT_SANITIZE cannot be combined")
  endif()
  target_compile_options(fskit_options INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(fskit_options INTERFACE -fsanitize=thread)
endif()

if(FSKIT_FUZZ)
  # Coverage instrumentation for the library code that the fuzz targets drive.
  target_compile_options(fskit_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

set_property(GLOBAL PROPERTY FSKIT_OBJECT_LIBRARIES "")

# fskit_family(<name> SOURCES <files...> [DEPENDS <families...>])
function(fskit_family name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  set(target fskit_${name})
  add_library(${target} OBJECT ${ARG_SOURCES})
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    C_VISIBILITY_PRESET hidden
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  # Code linked with the objects themselves (the tests) calls them directly,
  # not through a DLL's import table.
  target_compile_definitions(${target} PRIVATE FSKIT_BUILDING INTERFACE FSKIT_STATIC)
  target_include_directories(${target}
    PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_BINARY_DIR}/include
    PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PUBLIC fskit_options)
  foreach(dep IN LISTS ARG_DEPENDS)
    target_link_libraries(${target} PUBLIC fskit_${dep})
  endforeach()
  set_property(GLOBAL APPEND PROPERTY FSKIT_OBJECT_LIBRARIES ${target})
endfunction()

# Adds <current folder>/<family> for every family that has a CMakeLists.txt
# there (tests, benchmarks and fuzz targets are kept per family).
macro(fskit_add_family_subdirectories)
  foreach(family IN LISTS FSKIT_FAMILIES)
    if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${family}/CMakeLists.txt)
      add_subdirectory(${family})
    endif()
  endforeach()
endmacro()
