// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

namespace artwork
{

/// Reduces a picture of at least 256 colours to a palette of 256: median cut, then k-means. The
/// palette ascends by red + green + blue; entries with equal sums are shifted a little, so that
/// nearly all sums differ.
QImage reducedToPalette(const QImage &picture);

} // namespace artwork
