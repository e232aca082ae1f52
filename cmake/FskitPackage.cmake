# SPDX-License-Identifier: MIT
# `cpack -G DEB` in the build tree makes one Debian package with everything
# `cmake --install` puts in place: the shared and static library, headers,
# CMake package, pkg-config file, element file, tool and manual page.

set(CPACK_PACKAGE_NAME fskit)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
  "A C library (with a C++20 implementation) of messages and logging, strings,
INI files, an element table and molecular-formula parser, old instrument
number formats, dates, sorts, files and directories, command lines and tag
tables, and the fskit command-line tool that puts its main jobs in a user's
hands.")
set(CPACK_PACKAGE_VENDOR "fskit developers")
# The licence: its text for the generators that show one, its name where a
# package has a field for it (RPM); a Debian package has the text installed
# in /usr/share/doc/fskit.
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_RPM_PACKAGE_LICENSE MIT)
if(NOT CPACK_PACKAGE_CONTACT)
  set(CPACK_PACKAGE_CONTACT "fskit developers <fskit@localhost>")
endif()
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES TRUE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The shared library's shlibs file and the ldconfig trigger.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
find_program(FSKIT_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(FSKIT_DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6, libstdc++6, libgcc-s1")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_IGNORE_FILES "/\\\\.git/" "/build[^/]*/")
include(CPack)
