// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

namespace artwork
{

/// The picture that the rotozoom test turns and the Shell sort test sorts: a desert fox in an
/// ornament of petals under a night sky. 512 x 512, a palette of 256 colours, tiles without a seam.
QImage ornamentPicture();

} // namespace artwork
