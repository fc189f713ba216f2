// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/fixedPoint.h"

#include <array>
#include <cstddef>

namespace
{

constexpr int fraction = 28;
constexpr qint64 halfPi = 421657428; // pi / 2 with 28 fraction bits

/// The sine of an angle between 0 and a quarter turn, by its Taylor series.
constexpr qint32 sineOfQuarter(qint64 angle)
{
    const qint64 x = angle * halfPi / (artwork::fullTurn / 4);
    qint64 term = x;
    qint64 sum = x;
    for (qint64 n = 2; n <= 14; n += 2) {
        term = -(term * x / (qint64(1) << fraction)) * x / (qint64(1) << fraction) / (n * (n + 1));
        sum += term;
    }
    constexpr qint64 excess = (qint64(1) << fraction) / artwork::unity;
    return static_cast<qint32>((sum + excess / 2) / excess);
}

using quarterTable = std::array<qint32, artwork::fullTurn / 4 + 1>;

quarterTable makeQuarter()
{
    quarterTable table = {};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = sineOfQuarter(static_cast<qint64>(i));
    return table;
}

} // namespace

qint32 artwork::sine(qint32 angle)
{
    static const quarterTable quarter = makeQuarter();
    constexpr qint32 half = fullTurn / 2;
    const qint32 turned = angle & (fullTurn - 1);
    const qint32 inHalf = turned & (half - 1);
    const qint32 index = inHalf <= half / 2 ? inHalf : half - inHalf;
    const qint32 value = quarter[static_cast<std::size_t>(index)];
    return turned < half ? value : -value;
}

qint64 artwork::squareRoot(qint64 value)
{
    qint64 root = 0;
    qint64 rest = value;
    qint64 bit = qint64(1) << 62;
    while (bit > value)
        bit >>= 2;
    for (; bit != 0; bit >>= 2) {
        if (rest >= root + bit) {
            rest -= root + bit;
            root = (root >> 1) + bit;
        } else {
            root >>= 1;
        }
    }
    return root;
}
