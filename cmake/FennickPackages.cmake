# SPDX-License-Identifier: GPL-3.0-or-later

# Three packages for Debian: the benchmark, the result database, and what other programs are built with.
#   cpack -G DEB --config build/release/CPackConfig.cmake
set(FENNICK_MAINTAINER "The developers of Fennick <fennick@localhost.localdomain>" CACHE STRING
    "Who answers for the packages: NAME <ADDRESS>")
configure_file(packaging/debian/changelog.in "${PROJECT_BINARY_DIR}/changelog.Debian" @ONLY)
configure_file(packaging/debian/packageTree.cmake.in "${PROJECT_BINARY_DIR}/packageTree.cmake" @ONLY)

set(CPACK_COMPONENTS_ALL benchmark development)
if(FENNICK_HAS_SERVER)
    list(APPEND CPACK_COMPONENTS_ALL server)
endif()
set(CPACK_PACKAGE_NAME fennick)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has a summary of its own
set(CPACK_PACKAGE_CONTACT "${FENNICK_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
    WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_BINARY_DIR}/packageTree.cmake")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_BENCHMARK_PACKAGE_NAME fennick)
set(CPACK_DEBIAN_BENCHMARK_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_BENCHMARK_DESCRIPTION "CPU benchmark with live pictures and a ranking
Fennick measures a processor with a fixed suite of small workloads, each run
for a fixed time on one core or on all, and draws what they compute. Results
are kept, ranked among those of other machines, and exchanged with an online
result database. There is a window and a program for the terminal, with
statistics, comparisons and JSON.")

set(CPACK_DEBIAN_SERVER_PACKAGE_NAME fennick-server)
set(CPACK_DEBIAN_SERVER_PACKAGE_SECTION net)
set(CPACK_DEBIAN_SERVER_PACKAGE_DEPENDS "libqt5sql5-sqlite | libqt5sql5-psql, systemd | systemd-sysusers")
set(CPACK_DEBIAN_SERVER_PACKAGE_SUGGESTS "haproxy | nginx, libqt5sql5-psql, postgresql")
set(CPACK_DEBIAN_SERVER_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/packaging/debian/fennick-server/postinst"
    "${PROJECT_SOURCE_DIR}/packaging/debian/fennick-server/prerm"
    "${PROJECT_SOURCE_DIR}/packaging/debian/fennick-server/postrm")
set(CPACK_COMPONENT_SERVER_DESCRIPTION "result database of the CPU benchmark Fennick
Takes the results that Fennick uploads, keeps them in SQLite or PostgreSQL,
and publishes lists of machines that are ranked. Runs as a service of its own
user behind a proxy; examples for haproxy and nginx are included.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libfennick-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "qtbase5-dev, libqt5charts5-dev, libexpected-dev, libboost-dev, zlib1g-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "libraries of the CPU benchmark Fennick
The workloads, the measuring and the records of Fennick as static libraries,
with their headers and a CMake package, for programs that measure with them.")

include(CPack)
