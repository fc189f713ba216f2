# SPDX-License-Identifier: GPL-3.0-or-later

# The operating system word of a machine that runs CMAKE_SYSTEM_NAME @p system. Records know three
# words; what is neither Android nor Linux goes with the first system of the program.
function(fennick_os_word_of system result)
    if(system STREQUAL "Android")
        set(${result} android PARENT_SCOPE)
    elseif(system STREQUAL "Linux")
        set(${result} linux PARENT_SCOPE)
    else()
        set(${result} windows PARENT_SCOPE)
    endif()
endfunction()
