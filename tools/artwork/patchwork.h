// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

namespace material
{

/// The picture that the run-length and the zlib test pack: a patchwork of sixteen fields. Eight are
/// flat, with lettering and emblems, where runs of equal pixels abound; the eight between them are
/// woven, grown or blown by the wind, and no two neighbouring pixels are alike. 512 x 512, 24 bits
/// per pixel, no seam when laid side by side.
QImage patchworkPicture();

} // namespace material
