# SPDX-License-Identifier: GPL-3.0-or-later

# The language and the warnings of all our targets.
function(fennick_warnings target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    # String concatenation and conversions from plain char arrays must be written out.
    target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 $<$<BOOL:${FENNICK_WERROR}>:/WX>)
    else()
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wconversion
            $<$<BOOL:${FENNICK_WERROR}>:-Werror>)
    endif()
endfunction()
