# SPDX-License-Identifier: GPL-3.0-or-later

# Decides whether the result database is built: sets FENNICK_HAS_SERVER, and the cache entry
# FENNICK_SERVER_LEFT_OUT to the reason why not, which run.sh shows. The benchmark must build on every
# system, whatever else is there.
if(PROJECT_IS_TOP_LEVEL)
    set(FENNICK_BUILD_SERVER AUTO CACHE STRING
        "Build the result database: ON, OFF, or AUTO for where its libraries are")
else()
    set(FENNICK_BUILD_SERVER OFF CACHE STRING "Build the result database: ON, OFF, or AUTO")
endif()
set_property(CACHE FENNICK_BUILD_SERVER PROPERTY STRINGS AUTO ON OFF)

# Finds the libraries. Sets reason to what is missing, or to nothing.
macro(fennick_find_server_libraries reason)
    fennick_find_package(Qt5Sql 5.15 QUIET)
    fennick_find_package(ICU 66 QUIET COMPONENTS i18n uc)
    fennick_find_package(prometheus-cpp CONFIG QUIET)
    set(${reason} "")
    if(NOT Qt5Sql_FOUND)
        set(${reason} "Qt SQL is missing")
    elseif(NOT ICU_FOUND)
        set(${reason} "ICU is missing")
    elseif(NOT TARGET prometheus-cpp::core)
        set(${reason} "prometheus-cpp is missing")
    endif()
endmacro()

# Sets reason to why the server is left out, or to nothing.
macro(fennick_choose_server reason)
    if(FENNICK_BUILD_SERVER)
        fennick_find_server_libraries(${reason})
        if(NOT ${reason} STREQUAL "" AND NOT FENNICK_BUILD_SERVER STREQUAL "AUTO")
            message(FATAL_ERROR "fennick-server cannot be built: ${${reason}}")
        endif()
    else()
        set(${reason} "FENNICK_BUILD_SERVER is ${FENNICK_BUILD_SERVER}")
    endif()
endmacro()

fennick_choose_server(FENNICK_SERVER_REASON)
set(FENNICK_SERVER_LEFT_OUT "${FENNICK_SERVER_REASON}" CACHE INTERNAL "Why there is no server")
if(FENNICK_SERVER_REASON STREQUAL "")
    set(FENNICK_HAS_SERVER TRUE)
else()
    set(FENNICK_HAS_SERVER FALSE)
    message(STATUS "fennick-server is left out: ${FENNICK_SERVER_REASON}")
endif()
