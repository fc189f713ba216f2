// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <charconv>
#include <iterator>

/// The double with the shortest text that is this float again: 0.01 instead of
/// 0.0099999997764825821.
inline double shortFloat(float value)
{
    char text[32];
    const std::to_chars_result end = std::to_chars(std::begin(text), std::end(text), value);
    double result = 0;
    std::from_chars(std::begin(text), end.ptr, result);
    return static_cast<float>(result) == value ? result : static_cast<double>(value);
}
