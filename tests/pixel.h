// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

/// An opaque pixel. The components are not masked: bits above the eighth run into the next
/// component, which only some callers want.
constexpr quint32 opaquePixel(quint32 red, quint32 green, quint32 blue)
{
    return opaqueBlack | (red << 16) | (green << 8) | blue;
}
