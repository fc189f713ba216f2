# SPDX-License-Identifier: GPL-3.0-or-later

# Finds a package and makes its imported targets visible outside this project too, so that another
# project that adds this one as a subdirectory can link our libraries without finding the package
# itself. Targets that project has already found belong to it and are left alone.
macro(fennick_find_package package)
    get_property(_fennick_before DIRECTORY "${PROJECT_SOURCE_DIR}" PROPERTY IMPORTED_TARGETS)
    find_package(${package} ${ARGN})
    get_property(_fennick_after DIRECTORY "${PROJECT_SOURCE_DIR}" PROPERTY IMPORTED_TARGETS)
    list(REMOVE_ITEM _fennick_after "" ${_fennick_before})
    foreach(_fennick_target IN LISTS _fennick_after)
        get_target_property(_fennick_global ${_fennick_target} IMPORTED_GLOBAL)
        if(NOT _fennick_global)
            set_target_properties(${_fennick_target} PROPERTIES IMPORTED_GLOBAL TRUE)
        endif()
    endforeach()
endmacro()

fennick_find_package(Qt5 5.15 REQUIRED COMPONENTS Charts Core Gui Network Svg Widgets)
fennick_find_package(OpenMP REQUIRED COMPONENTS CXX)
fennick_find_package(ZLIB REQUIRED)
fennick_find_package(Threads REQUIRED)
fennick_find_package(tl-expected REQUIRED)
fennick_find_package(Boost 1.74 CONFIG REQUIRED)
