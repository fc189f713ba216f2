// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/artwork/canvas.h"

namespace artwork
{

/// Paints a desert fox's head, from the tips of the ears 118 pixels above @p centre to the chin 74
/// pixels below it; the jewel on its brow is the centre.
void paintFoxHead(canvas &picture, point centre);

} // namespace artwork
