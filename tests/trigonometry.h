// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

// Single-precision sine and cosine of an angle in radians. They are rounded from double precision,
// which gives the nearest float with every C library, and so the same frames on every system.

inline float sine(float angle)
{
    return static_cast<float>(std::sin(static_cast<double>(angle)));
}

inline float cosine(float angle)
{
    return static_cast<float>(std::cos(static_cast<double>(angle)));
}
