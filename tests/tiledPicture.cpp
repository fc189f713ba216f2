// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tiledPicture.h"

#include "tests/pixel.h"

#include <QImage>

namespace
{

/// Row @p y of @p picture, repeated over @p width pixels.
void tileRow(quint32 *row, quint32 width, const QImage &picture, quint32 y)
{
    const auto tile = static_cast<quint32>(picture.width());
    for (quint32 x = 0; x < width; ++x) {
        row[x] = opaqueBlack
                 | picture.pixel(static_cast<int>(x % tile),
                                 static_cast<int>(y % static_cast<quint32>(picture.height())));
    }
}

} // namespace

bool tiledPicture::load(const QString &resource, quint32 tiles)
{
    const QImage picture = QImage(resource).convertToFormat(QImage::Format_ARGB32);
    width = tiles * static_cast<quint32>(picture.width());
    height = tiles * static_cast<quint32>(picture.height());
    if (!pixels.allocate(static_cast<std::size_t>(width) * height))
        return false;
    for (quint32 y = 0; y < height; ++y)
        tileRow(pixels.data() + static_cast<std::size_t>(y) * width, width, picture, y);
    return true;
}
