// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/artwork/canvas.h"

namespace material
{

/// Paints a desert fox's head, from the ears' tips 118 pixels above @p centre to the chin 74 pixels
/// below; a jewel on its brow marks the very centre.
void paintFoxHead(canvas &picture, point centre);

} // namespace material
