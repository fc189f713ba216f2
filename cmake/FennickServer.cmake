# SPDX-License-Identifier: GPL-3.0-or-later

# Decides whether the result database is built: sets FENNICK_HAS_SERVER, and the cache entry
# FENNICK_SERVER_LEFT_OUT to the reason why not, which run.sh shows. The benchmark must build on every
# system whatever HTTP library is there, and the versions of that one differ in what our sources take
# hold of. So AUTO compiles the sources in question before it says yes.
if(PROJECT_IS_TOP_LEVEL)
    set(FENNICK_BUILD_SERVER AUTO CACHE STRING
        "Build the result database: ON, OFF, or AUTO for where its libraries are usable")
else()
    set(FENNICK_BUILD_SERVER OFF CACHE STRING "Build the result database: ON, OFF, or AUTO")
endif()
set_property(CACHE FENNICK_BUILD_SERVER PROPERTY STRINGS AUTO ON OFF)

# Finds the libraries. Sets reason to what is missing, or to nothing.
macro(fennick_find_server_libraries reason)
    fennick_find_package(Qt5Sql 5.15 QUIET)
    fennick_find_package(ICU 66 QUIET COMPONENTS i18n uc)
    find_package(PkgConfig QUIET)
    if(PKG_CONFIG_FOUND)
        pkg_check_modules(httplib QUIET IMPORTED_TARGET GLOBAL cpp-httplib>=0.11)
        # What was found by an earlier configuration may have been removed since.
        find_file(FENNICK_HTTPLIB_HEADER httplib.h HINTS ${httplib_INCLUDE_DIRS} NO_CACHE)
    endif()
    set(${reason} "")
    if(NOT Qt5Sql_FOUND)
        set(${reason} "Qt SQL is missing")
    elseif(NOT ICU_FOUND)
        set(${reason} "ICU is missing")
    elseif(NOT PKG_CONFIG_FOUND)
        set(${reason} "pkg-config is missing")
    elseif(NOT httplib_FOUND OR NOT FENNICK_HTTPLIB_HEADER)
        set(${reason} "cpp-httplib is missing")
    endif()
endmacro()

# Compiles what depends on the library's version; again only after a change of it, or of ours.
function(fennick_try_server_library result)
    set(sources boundedServer.cpp deadlineStream.cpp growingPool.cpp)
    set(headers boundedServer.h deadlineStream.h growingPool.h)
    list(TRANSFORM sources PREPEND "${PROJECT_SOURCE_DIR}/server/")
    list(TRANSFORM headers PREPEND "${PROJECT_SOURCE_DIR}/server/")
    set(state "${CMAKE_CXX_COMPILER}")
    foreach(file IN LISTS FENNICK_HTTPLIB_HEADER sources headers)
        file(SHA256 "${file}" hash)
        string(APPEND state " ${hash}")
    endforeach()
    if(NOT state STREQUAL FENNICK_SERVER_TRIED)
        set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
        try_compile(isUsable "${PROJECT_BINARY_DIR}/tryServer" SOURCES ${sources}
            CMAKE_FLAGS "-DINCLUDE_DIRECTORIES=${PROJECT_SOURCE_DIR}"
            LINK_LIBRARIES PkgConfig::httplib
            CXX_STANDARD 20 CXX_STANDARD_REQUIRED ON)
        set(FENNICK_SERVER_USABLE ${isUsable} CACHE INTERNAL "Whether the server compiles")
        set(FENNICK_SERVER_TRIED "${state}" CACHE INTERNAL "What that is known of")
        unset(isUsable CACHE)
    endif()
    set(${result} ${FENNICK_SERVER_USABLE} PARENT_SCOPE)
endfunction()

# Sets reason to why the server is left out, or to nothing.
function(fennick_choose_server reason)
    if(NOT FENNICK_BUILD_SERVER)
        set(${reason} "FENNICK_BUILD_SERVER is ${FENNICK_BUILD_SERVER}" PARENT_SCOPE)
        return()
    endif()
    fennick_find_server_libraries(why)
    if(FENNICK_HTTPLIB_HEADER)
        # Another version of the library is a reason to decide anew.
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${FENNICK_HTTPLIB_HEADER}")
    endif()
    if(why STREQUAL "" AND FENNICK_BUILD_SERVER STREQUAL "AUTO")
        fennick_try_server_library(isUsable)
        if(NOT isUsable)
            set(why "it does not compile with cpp-httplib ${httplib_VERSION}")
        endif()
    endif()
    if(NOT why STREQUAL "" AND NOT FENNICK_BUILD_SERVER STREQUAL "AUTO")
        message(FATAL_ERROR "fennick-server cannot be built: ${why}")
    endif()
    set(${reason} "${why}" PARENT_SCOPE)
endfunction()

fennick_choose_server(FENNICK_SERVER_REASON)
set(FENNICK_SERVER_LEFT_OUT "${FENNICK_SERVER_REASON}" CACHE INTERNAL "Why there is no server")
if(FENNICK_SERVER_REASON STREQUAL "")
    set(FENNICK_HAS_SERVER TRUE)
else()
    set(FENNICK_HAS_SERVER FALSE)
    message(STATUS "fennick-server is left out: ${FENNICK_SERVER_REASON}")
endif()
