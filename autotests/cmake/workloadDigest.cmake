# SPDX-License-Identifier: GPL-3.0-or-later

# The digest of the machine code of objects: what changes it, and what does not. Compiles a small source
# in several folders.
# usage: cmake -DFENNICK_SOURCE_DIR=DIR -DCXX=COMPILER -DOBJCOPY=PROGRAM -DOBJDUMP=PROGRAM -DWORK=DIR
#     -P workloadDigest.cmake
cmake_minimum_required(VERSION 3.22)

set(source "#include <cmath>
#include <string>
static const int table[] = {3, 1, 4, 1, 5};
int lookUp(int i) { return table[i] + 7; }
int callee(int);
int call(int i) { return callee(i) + 1; }
float root(float x) { return std::sqrt(x) * 0.3F; }
std::string named(const std::string &name) { return name + \"a constant of some length\"; }
")
set(other "int other(int x) { return x * 12345; }\n")

# compile(<object> <source> <option>...): WORK/<object> from the text <source> in the folder of the object.
function(compile object text)
    get_filename_component(folder "${WORK}/${object}" DIRECTORY)
    get_filename_component(name "${object}" NAME_WE)
    file(WRITE "${folder}/${name}.cpp" "${text}")
    execute_process(COMMAND "${CXX}" -O2 ${ARGN} -c "${folder}/${name}.cpp" -o "${WORK}/${object}"
        RESULT_VARIABLE status ERROR_VARIABLE error)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${object}: ${error}")
    endif()
endfunction()

# digest_of(<result> <object>...): by way of the generated source.
function(digest_of result)
    list(TRANSFORM ARGN PREPEND "${WORK}/")
    execute_process(COMMAND "${CMAKE_COMMAND}" "-DOBJECTS=${ARGN}" "-DOUTPUT=${WORK}/digest.cpp"
            "-DOBJCOPY=${OBJCOPY}" "-DOBJDUMP=${OBJDUMP}"
            -P "${FENNICK_SOURCE_DIR}/cmake/workloadDigest.cmake"
        RESULT_VARIABLE status OUTPUT_QUIET)
    file(READ "${WORK}/digest.cpp" generated)
    if(NOT status EQUAL 0 OR NOT generated MATCHES "workloadDigest = \"([0-9a-f]*)\"")
        message(FATAL_ERROR "no source was made: ${status}")
    endif()
    set(${result} "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()

function(expect_same name one another)
    if(NOT one STREQUAL another)
        message(SEND_ERROR "${name}: ${one} is not ${another}")
    endif()
endfunction()

function(expect_other name one another)
    if(one STREQUAL another OR NOT another MATCHES "^[0-9a-f]+$")
        message(SEND_ERROR "${name}: still '${another}'")
    endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
compile(here/work.o "${source}")
compile(here/other.o "${other}")
digest_of(first here/work.o here/other.o)
string(LENGTH "${first}" length)
expect_same("the length of a digest" "${length}" 64)

compile("another folder/with a longer path/work.o" "// A line more.\n${source}" -g)
compile(there/renamed.o "${other}")
digest_of(elsewhere there/renamed.o "another folder/with a longer path/work.o")
expect_same("other folders, names and order, debug information" "${elsewhere}" "${first}")

digest_of(fewer here/work.o)
expect_other("an object less" "${first}" "${fewer}")

# Each a change of one instruction, one constant, one callee, one flag.
foreach(change "+ 7@+ 8" "1, 4@1, 5" "0.3F@0.4F" "a constant@A constant" "callee@called" "std::sqrt@std::cbrt")
    string(REPLACE "@" ";" change "${change}")
    list(GET change 0 before)
    list(GET change 1 after)
    string(REPLACE "${before}" "${after}" changed "${source}")
    compile(changed/work.o "${changed}")
    digest_of(digest changed/work.o here/other.o)
    expect_other("'${before}' to '${after}'" "${first}" "${digest}")
endforeach()
compile(flags/work.o "${source}" -fno-math-errno)
digest_of(digest flags/work.o here/other.o)
expect_other("another flag" "${first}" "${digest}")

# What cannot be told is empty, and no reason for a build to fail.
digest_of(digest here/missing.o)
expect_same("a missing object" "${digest}" "")
digest_of(digest)
expect_same("no objects" "${digest}" "")
compile(empty/empty.o "extern int nothing;\n")
file(WRITE "${WORK}/here/text.o" "no object\n")
digest_of(digest here/work.o here/text.o)
expect_same("a file that is no object" "${digest}" "")
set(OBJDUMP "OBJDUMP-NOTFOUND")
digest_of(digest here/work.o)
expect_same("no objdump" "${digest}" "")
