// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/patchwork.h"

#include "tools/artwork/canvas.h"
#include "tools/artwork/easel.h"
#include "tools/artwork/flatFields.h"
#include "tools/artwork/noise.h"
#include "tools/artwork/texturedFields.h"

#include <algorithm>

using namespace artwork;

namespace
{

constexpr qint32 fieldsPerRow = 4;
constexpr qint32 seam = 2;
constexpr colour seamTint = hex(0x120E22);

bool isTextured(qint32 row, qint32 column)
{
    return (row + column) % 2 == 1;
}

void paintSeams(canvas &picture)
{
    for (qint32 i = 0; i < fieldsPerRow; ++i) {
        const qint32 end = fieldsPerRow * fieldSide;
        const qint32 line = i * fieldSide;
        picture.fill(rectangle(at(0, line - seam), at(end, line + seam)), flat(seamTint));
        picture.fill(rectangle(at(line - seam, 0), at(line + seam, end)), flat(seamTint));
    }
}

/// Adds the grain of fine cloth. Columns are lighter and darker in turn, by more than the random
/// part of the grain can cancel, so that neighbours in a row differ even where the picture is flat.
QRgb grained(QRgb pixel, qint32 x, qint32 y)
{
    const qint32 warp = x % 2 == 0 ? 4 : -4;
    const auto channel = [&](int value, quint32 seed) {
        const auto grain = static_cast<qint32>(placeHash(x, y, seed) % 7U) - 3;
        return std::clamp(value + warp + grain, 0, 255);
    };
    return qRgb(channel(qRed(pixel), 101), channel(qGreen(pixel), 102), channel(qBlue(pixel), 103));
}

void addGrain(QImage &image, qint32 left, qint32 top)
{
    for (qint32 y = top + seam; y < top + fieldSide - seam; ++y) {
        for (qint32 x = left + seam; x < left + fieldSide - seam; ++x)
            image.setPixel(x, y, grained(image.pixel(x, y), x, y));
    }
}

} // namespace

QImage artwork::patchworkPicture()
{
    canvas picture(fieldsPerRow * fieldSide);
    for (qint32 i = 0; i < fieldsPerRow * fieldsPerRow; ++i) {
        const qint32 row = i / fieldsPerRow;
        const qint32 column = i % fieldsPerRow;
        easel field(picture, at(column * fieldSide, row * fieldSide));
        if (isTextured(row, column))
            paintTexturedField(field, i / 2);
        else
            paintFlatField(field, i / 2);
    }
    paintSeams(picture);

    QImage image = picture.toImage();
    for (qint32 row = 0; row < fieldsPerRow; ++row) {
        for (qint32 column = 0; column < fieldsPerRow; ++column) {
            if (isTextured(row, column))
                addGrain(image, column * fieldSide, row * fieldSide);
        }
    }
    return image;
}
