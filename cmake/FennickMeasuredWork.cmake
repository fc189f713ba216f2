# SPDX-License-Identifier: GPL-3.0-or-later

# The one compile policy for measured work. Results of different machines and builds are compared
# with each other, so a workload must ask for the same instructions in each of them: plain -O2, and
# none of the transformations that some compilers, versions or flags apply and others do not.
#
#   -O2                            whatever the build type says (it comes last on the command line)
#   no vectorisation               of loops or of straight-line code; a kernel is scalar as written
#   no contraction                 a multiplication and an addition stay two roundings
#   no fast-math                   no reassociation, no reciprocals instead of divisions
#   no errno after a root          a check stands before each root on some systems and not on others
#   no assertions                  of the toolkit or the standard library, in debug builds either
#   no link-time optimisation      a workload is not specialised for its caller
#   no recognition of CRC loops    the bit-serial checksum stays bit-serial
#   aligned functions and loops    the same instructions run up to a tenth faster or slower by where
#                                  they happen to stand, which any change of the program can move
#   no -march                      the baseline of the architecture; a build that adds one through
#                                  CMAKE_CXX_FLAGS is warned that its results cannot be compared
include(CheckCXXCompilerFlag)

set(FENNICK_MEASURED_WORK_OPTIONS)
if(MSVC)
    list(APPEND FENNICK_MEASURED_WORK_OPTIONS /O2 /fp:precise /GL- -d2Qvec-)
else()
    list(APPEND FENNICK_MEASURED_WORK_OPTIONS -O2 -fno-fast-math -ffp-contract=off -fno-lto
        -fno-math-errno -U_GLIBCXX_ASSERTIONS -falign-functions=64 -falign-loops=64)
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        list(APPEND FENNICK_MEASURED_WORK_OPTIONS -fno-vectorize -fno-slp-vectorize)
        check_cxx_compiler_flag("-mllvm -disable-loop-idiom-hashrecognize"
            FENNICK_HAS_NO_HASH_RECOGNIZE)
        if(FENNICK_HAS_NO_HASH_RECOGNIZE)
            list(APPEND FENNICK_MEASURED_WORK_OPTIONS
                "SHELL:-mllvm -disable-loop-idiom-hashrecognize")
        endif()
    else()
        list(APPEND FENNICK_MEASURED_WORK_OPTIONS -fno-tree-vectorize -fno-tree-slp-vectorize)
        check_cxx_compiler_flag(-fno-optimize-crc FENNICK_HAS_NO_OPTIMIZE_CRC)
        if(FENNICK_HAS_NO_OPTIMIZE_CRC)
            list(APPEND FENNICK_MEASURED_WORK_OPTIONS -fno-optimize-crc)
        endif()
    endif()
endif()

if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_RELEASE}" MATCHES "-m(arch|cpu|tune)=|-m(avx|fma)|/arch:")
    message(WARNING "The compiler flags choose an instruction set. "
        "Results of this build cannot be compared with those of other machines.")
endif()

function(fennick_measured_work target)
    target_compile_options(${target} PRIVATE ${FENNICK_MEASURED_WORK_OPTIONS})
    target_compile_definitions(${target} PRIVATE QT_NO_DEBUG)
    set_target_properties(${target} PROPERTIES
        INTERPROCEDURAL_OPTIMIZATION OFF
        INTERPROCEDURAL_OPTIMIZATION_RELEASE OFF)
endfunction()
