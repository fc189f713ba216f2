// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

namespace artwork
{

/// The picture that the run-length and zlib tests compress: a patchwork of sixteen fields. Eight
/// are flat, with letters and an emblem, and have long runs of equal pixels; the eight between them
/// are textured, and no two pixels next to each other in a row are equal. 512 x 512, 24 bits per
/// pixel, tiles without a seam.
QImage patchworkPicture();

} // namespace artwork
