// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

namespace material
{

/// Reduces a picture of at least 256 colours to a palette of 256, chosen by median cut and moved to
/// the means of the pixels they stand for. The palette ascends by red + green + blue, and colours
/// with the same sum are drawn apart a little, so that the sums tell nearly all of them apart.
QImage reducedToPalette(const QImage &picture);

} // namespace material
