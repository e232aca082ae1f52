# SPDX-License-Identifier: MIT
# libfskit.so and libfskit.a from the objects of every family.

get_property(fskit_objects GLOBAL PROPERTY FSKIT_OBJECT_LIBRARIES)
set(fskit_object_files "")
foreach(obj IN LISTS fskit_objects)
  list(APPEND fskit_object_files $<TARGET_OBJECTS:${obj}>)
endforeach()

find_package(Threads REQUIRED)
add_library(fskit SHARED ${fskit_object_files})
add_library(fskit_static STATIC ${fskit_object_files})
foreach(lib fskit fskit_static)
  target_include_directories(${lib} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${lib} PRIVATE $<BUILD_INTERFACE:fskit_options>)
  target_link_libraries(${lib} PUBLIC m PRIVATE Threads::Threads)
  if(FSKIT_VQSORT_FOUND)
    target_link_libraries(${lib} PRIVATE hwy::hwy_contrib hwy::hwy)
  endif()
endforeach()

# The C++ runtime the library's objects need (libstdc++ or libc++, with what
# it brings): the libraries the C++ driver links that the C driver does not.
# A program of C alone links libfskit.a with the C driver, so the static
# library names them itself for a C link; a link by the C++ driver has them.
set(FSKIT_CXX_RUNTIME ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
if(CMAKE_C_IMPLICIT_LINK_LIBRARIES)
  list(REMOVE_ITEM FSKIT_CXX_RUNTIME ${CMAKE_C_IMPLICIT_LINK_LIBRARIES})
endif()
list(REMOVE_DUPLICATES FSKIT_CXX_RUNTIME)
foreach(runtime IN LISTS FSKIT_CXX_RUNTIME)
  target_link_libraries(fskit_static INTERFACE $<$<LINK_LANGUAGE:C>:${runtime}>)
endforeach()
# The exported names live in exports.txt. FSKIT_API marks them in the sources.
# On ELF a version script made from the same list keeps everything else
# (template instantiations of the standard library among them) out of the
# symbol table; a DLL exports only what is marked dllexport, so there the
# marks alone decide.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/exports.txt)
if(WIN32)
  # fskit.dll with its import library libfskit.dll.a, beside the static libfskit.a.
  target_sources(fskit PRIVATE ${PROJECT_SOURCE_DIR}/platform/windows/dll_entry.cpp)
  set_target_properties(fskit PROPERTIES PREFIX "" VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  target_compile_definitions(fskit_static INTERFACE FSKIT_STATIC)
else()
  file(STRINGS ${PROJECT_SOURCE_DIR}/exports.txt fskit_export_lines)
  set(fskit_version_script "{\n  global:\n")
  foreach(line IN LISTS fskit_export_lines)
    string(STRIP "${line}" line)
    if(line AND NOT line MATCHES "^#")
      string(APPEND fskit_version_script "    ${line};\n")
    endif()
  endforeach()
  string(APPEND fskit_version_script "  local: *;\n};\n")
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/fskit.map CONTENT "${fskit_version_script}")

  set_target_properties(fskit PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LINK_DEPENDS ${PROJECT_BINARY_DIR}/fskit.map)
  target_link_options(fskit PRIVATE
    -Wl,--version-script=${PROJECT_BINARY_DIR}/fskit.map
    $<$<NOT:$<OR:$<BOOL:${FSKIT_SANITIZE}>,$<BOOL:${FSKIT_TSAN}>>>:-Wl,--no-undefined>)
endif()
set_target_properties(fskit_static PROPERTIES OUTPUT_NAME fskit EXPORT_NAME fskit_static)
add_library(fskit::fskit ALIAS fskit)
add_library(fskit::fskit_static ALIAS fskit_static)
