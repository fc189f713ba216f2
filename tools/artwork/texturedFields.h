// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/artwork/easel.h"

namespace artwork
{

/// Paints textured field @p number, 0 to 7, with its upper left corner at the easel's origin:
/// dunes, a night sky, a carpet, fur, agate, a canyon, water and a hammered sun.
void paintTexturedField(easel &field, int number);

} // namespace artwork
