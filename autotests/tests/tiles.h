// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "rounds.h"

#include <QImage>
#include <QString>

#include <algorithm>

/// The picture of the coding tests, repeated @p tiles times each way.
inline frame tiledWords(int tiles)
{
    const QImage picture(QStringLiteral(":/data/pic2_512_512.png"));
    frame words;
    words.reserve(std::size_t(tiles) * std::size_t(tiles) * 512U * 512U);
    for (int y = 0; y < tiles * 512; ++y) {
        for (int x = 0; x < tiles * 512; ++x)
            words.push_back(black | picture.pixel(x % 512, y % 512));
    }
    return words;
}

/// What a frame shows of @p words in rows of @p side.
inline frame window(const frame &words, int side, int width, int height)
{
    frame pixels = blackFrame(width, height);
    for (int y = 0; y < std::min(side, height); ++y) {
        for (int x = 0; x < std::min(side, width); ++x) {
            pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)] =
                words[std::size_t(y) * std::size_t(side) + std::size_t(x)];
        }
    }
    return pixels;
}
