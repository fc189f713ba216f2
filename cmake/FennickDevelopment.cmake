# SPDX-License-Identifier: GPL-3.0-or-later

# The libraries for other programs, without the window: headers, archives, and a CMake package that
# finds what they need. find_package(Fennick) gives fennickcore, and fennickrecords for programs that
# read records and run no tests.
include(CMakePackageConfigHelpers)

set(FENNICK_HEADERS "${CMAKE_INSTALL_INCLUDEDIR}/fennick")
set(FENNICK_CMAKE_DIRECTORY "${CMAKE_INSTALL_LIBDIR}/cmake/Fennick")

foreach(library fennickrecords fennickcore)
    target_include_directories(${library} INTERFACE "$<INSTALL_INTERFACE:${FENNICK_HEADERS}>")
endforeach()
# The embedded files go along as objects, see fennick_embed.
install(TARGETS fennickrecords fennickcore fennickmachines fennickresources EXPORT Fennick
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
    OBJECTS DESTINATION "${CMAKE_INSTALL_LIBDIR}/fennick" COMPONENT development)
install(EXPORT Fennick FILE FennickTargets.cmake DESTINATION "${FENNICK_CMAKE_DIRECTORY}" COMPONENT development)
install(DIRECTORY data engine tests DESTINATION "${FENNICK_HEADERS}" COMPONENT development
    FILES_MATCHING PATTERN "*.h")

configure_package_config_file(cmake/FennickConfig.cmake.in "${PROJECT_BINARY_DIR}/FennickConfig.cmake"
    INSTALL_DESTINATION "${FENNICK_CMAKE_DIRECTORY}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/FennickConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/FennickConfig.cmake" "${PROJECT_BINARY_DIR}/FennickConfigVersion.cmake"
    DESTINATION "${FENNICK_CMAKE_DIRECTORY}" COMPONENT development)
