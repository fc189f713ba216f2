// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/artwork/shape.h"

namespace material
{

/// A number from 0 to 65535 that belongs to a place: always the same, without a visible pattern.
quint32 scattered(qint32 x, qint32 y, quint32 seed);

/// Smooth noise from 0 to 1023 whose bumps are about @p size canvas units wide.
qint32 smoothNoise(point p, qint32 size, quint32 seed);

/// Smooth noise with finer noise on top, from 0 to 1023.
qint32 cloudNoise(point p, qint32 size, quint32 seed);

} // namespace material
