# SPDX-License-Identifier: MIT
include(CMakePackageConfigHelpers)

set(FSKIT_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/fskit)

install(TARGETS fskit fskit_static EXPORT fskitTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/fskit DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/include/fskit/version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/fskit)
install(EXPORT fskitTargets NAMESPACE fskit:: DESTINATION ${FSKIT_CMAKE_DIR})
# The licence goes with every copy of the library.
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(FSKIT_ELEMENT_FILE ${CMAKE_INSTALL_DATADIR}/fskit/kw_elements.tbl)
configure_package_config_file(cmake/fskitConfig.cmake.in
  ${PROJECT_BINARY_DIR}/fskitConfig.cmake
  INSTALL_DESTINATION ${FSKIT_CMAKE_DIR}
  PATH_VARS FSKIT_ELEMENT_FILE)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/fskitConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/fskitConfig.cmake
              ${PROJECT_BINARY_DIR}/fskitConfigVersion.cmake
  DESTINATION ${FSKIT_CMAKE_DIR})

# The .pc file finds its prefix from its own place, so an installed tree can
# be moved (and tested in a temporary prefix).
file(RELATIVE_PATH FSKIT_PC_UP "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
# A static link (pkg-config --static) adds what libfskit.a needs besides: the
# C++ runtime (for a program linked by the C driver), the maths library and
# the thread library where the platform has one of its own, and Highway's
# libraries when the sorts use vqsort.
set(FSKIT_PC_LIBS_PRIVATE "")
if(FSKIT_VQSORT_FOUND)
  list(APPEND FSKIT_PC_LIBS_PRIVATE -lhwy_contrib -lhwy)
endif()
foreach(lib IN LISTS FSKIT_CXX_RUNTIME ITEMS m)
  list(APPEND FSKIT_PC_LIBS_PRIVATE -l${lib})
endforeach()
list(APPEND FSKIT_PC_LIBS_PRIVATE ${CMAKE_THREAD_LIBS_INIT})
list(REMOVE_DUPLICATES FSKIT_PC_LIBS_PRIVATE)
list(JOIN FSKIT_PC_LIBS_PRIVATE " " FSKIT_PC_LIBS_PRIVATE)
configure_file(cmake/fskit.pc.in ${PROJECT_BINARY_DIR}/fskit.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/fskit.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
