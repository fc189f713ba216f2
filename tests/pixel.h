// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

constexpr int redShift = 16;
constexpr int greenShift = 8;
constexpr int blueShift = 0;

/// An opaque pixel. The components are not masked: bits above the eighth run into the next
/// component, which only some callers want.
constexpr quint32 opaquePixel(quint32 red, quint32 green, quint32 blue)
{
    return opaqueBlack | (red << redShift) | (green << greenShift) | blue;
}

/// One component of a pixel, 0 to 255, in the arithmetic it is used in.
template <typename number> constexpr number component(quint32 pixel, int shift)
{
    return static_cast<number>(static_cast<qint32>(pixel >> shift & 0xFFU));
}
