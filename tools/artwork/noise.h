// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/artwork/shape.h"

namespace artwork
{

/// A hash from 0 to 65535 of a place, without a visible pattern.
quint32 placeHash(qint32 x, qint32 y, quint32 seed);

/// Value noise from 0 to 1023 on a grid of @p size canvas units.
qint32 smoothNoise(point p, qint32 size, quint32 seed);

/// Four octaves of smooth noise, the coarsest on a grid of @p size canvas units; from 0 to 1023.
qint32 cloudNoise(point p, qint32 size, quint32 seed);

} // namespace artwork
