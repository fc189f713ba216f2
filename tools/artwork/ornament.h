// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

namespace material
{

/// The picture that the rotozoomer turns and the Shell sort sorts: a desert fox amid an ornament of
/// petals under a night sky. 512 x 512, a palette of 256 colours, no seam when laid side by side.
QImage ornamentPicture();

} // namespace material
