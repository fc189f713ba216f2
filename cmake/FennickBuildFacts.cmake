# SPDX-License-Identifier: GPL-3.0-or-later

# What a program knows of its own build: data/buildFacts. Makes the objects of `target`, which
# say what the objects of `workloads` were compiled with and what their machine code is. They are
# made after the workloads, which know nothing of them.
include(CMakeFindBinUtils)

function(fennick_build_facts target workloads)
    set(digest "${CMAKE_CURRENT_BINARY_DIR}/workloadDigest.cpp")
    set(script "${PROJECT_SOURCE_DIR}/cmake/workloadDigest.cmake")
    set(objects "$<TARGET_OBJECTS:${workloads}>")
    add_custom_command(OUTPUT "${digest}"
        COMMAND "${CMAKE_COMMAND}" "-DOBJECTS=${objects}" "-DOUTPUT=${digest}"
            "-DOBJCOPY=${CMAKE_OBJCOPY}" "-DOBJDUMP=${CMAKE_OBJDUMP}" -P "${script}"
        DEPENDS ${workloads} ${objects} "${script}"
        COMMENT "Digest of the machine code of the workloads"
        VERBATIM)
    add_library(${target} OBJECT data/buildFacts.cpp "${digest}")
    target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
    target_link_libraries(${target} PRIVATE Qt5::Core)

    string(TOUPPER "${CMAKE_BUILD_TYPE}" type)
    set(options "$<TARGET_PROPERTY:${workloads},COMPILE_OPTIONS>")
    # Warnings do nothing to the code.
    set(options "$<JOIN:$<FILTER:${options},EXCLUDE,^(-W|/W)>, >")
    set(flags "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${type}} ${options}")
    string(REPLACE "\"" "\\\"" flags "${flags}")
    target_compile_definitions(${target} PRIVATE
        FENNICK_VERSION="${PROJECT_VERSION}"
        FENNICK_COMPILER="${CMAKE_CXX_COMPILER_ID}"
        FENNICK_COMPILER_VERSION="${CMAKE_CXX_COMPILER_VERSION}"
        FENNICK_BUILD_TYPE="$<CONFIG>"
        "FENNICK_MEASURED_FLAGS=\"${flags}\"")
    fennick_warnings(${target})
endfunction()
