// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/lines.h"

#include <cmath>
#include <cstdlib>

bool lines::setup(int newWidth, int newHeight)
{
    if (!testBase::setup(newWidth, newHeight))
        return false;
    fillBlack();
    return true;
}

void lines::run()
{
    const int n = static_cast<int>(std::sqrt(static_cast<double>(lineCount)));
    for (int fan = 0; fan < n; ++fan) {
        const point from = randomPoint();
        const auto upper = static_cast<quint32>(std::rand());
        const auto lower = static_cast<quint32>(std::rand());
        const quint32 colour = opaqueBlack | upper << 8 | lower;
        for (int line = 0; line < n; ++line) {
            const point to = randomPoint();
            drawLine(from, to, colour);
        }
    }
}

/// The error is kept doubled but compared with the plain differences, strictly on both sides: that
/// decides which pixels belong to the line.
void lines::drawLine(point from, point to, quint32 colour)
{
    const qint32 dx = std::abs(to.x - from.x);
    const qint32 dy = -std::abs(to.y - from.y);
    const qint32 sx = from.x < to.x ? 1 : -1;
    const qint32 sy = from.y < to.y ? 1 : -1;
    qint32 error = 2 * (dx + dy);
    qint32 x = from.x;
    qint32 y = from.y;
    for (;;) {
        row(y)[x] = colour;
        if (x == to.x && y == to.y)
            return;
        const qint32 before = error;
        if (before > dy) {
            error += 2 * dy;
            x += sx;
        }
        if (before < dx) {
            error += 2 * dx;
            y += sy;
        }
    }
}

lines::point lines::randomPoint() const
{
    const qint32 x = std::rand() % width;
    const qint32 y = std::rand() % height;
    return {x, y};
}
