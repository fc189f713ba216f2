// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/artwork/easel.h"

namespace artwork
{

/// The width and height of one field of the patchwork, in pixels.
constexpr qint32 fieldSide = 128;

/// Paints flat field @p number, 0 to 7, with its upper left corner at the easel's origin: seven
/// letters and an emblem.
void paintFlatField(easel &field, int number);

} // namespace artwork
