# SPDX-License-Identifier: GPL-3.0-or-later
# Run with cmake -P, FENNICK_SOURCE_DIR defined: the word of each target system, those included that
# nobody builds for here.
cmake_minimum_required(VERSION 3.22)
include("${FENNICK_SOURCE_DIR}/cmake/FennickOsWord.cmake")

foreach(row "Android android" "Linux linux" "Windows windows" "Darwin windows")
    separate_arguments(row)
    list(GET row 0 system)
    list(GET row 1 expected)
    set(word)
    fennick_os_word_of(${system} word)
    if(NOT word STREQUAL expected)
        message(SEND_ERROR "${system}: \"${word}\" instead of \"${expected}\"")
    endif()
endforeach()
