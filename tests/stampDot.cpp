// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/stampDot.h"

void stampDot(testBase &test, quint32 x, quint32 y, quint32 colour)
{
    const auto width = static_cast<quint32>(test.getWidth());
    const auto height = static_cast<quint32>(test.getHeight());
    for (quint32 i = 0; i < width / 320; ++i) {
        for (quint32 j = 0; j < height / 240; ++j) {
            const quint32 px = x + i;
            const quint32 py = y + j;
            if (px < width && py < height)
                test.getBuffer()[static_cast<std::size_t>(py) * width + px] = colour;
        }
    }
}
