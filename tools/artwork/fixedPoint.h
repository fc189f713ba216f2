// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

/// Integer arithmetic for the embedded material, so that it comes out the same on every machine:
/// what a mathematical library or a contracted multiplication rounds differently is never used.
namespace material
{

/// Angles count in 4096ths of a turn.
constexpr qint32 fullTurn = 4096;
/// Sines and factors count in 16384ths.
constexpr qint32 unity = 16384;

/// The sine of any angle.
qint32 sine(qint32 angle);

inline qint32 cosine(qint32 angle)
{
    return sine(angle + fullTurn / 4);
}

/// The greatest integer whose square is at most @p value, which is not negative.
qint64 squareRoot(qint64 value);

/// @p dividend / @p divisor rounded down; the divisor is positive.
constexpr qint64 floorQuotient(qint64 dividend, qint64 divisor)
{
    const qint64 quotient = dividend / divisor;
    return dividend % divisor < 0 ? quotient - 1 : quotient;
}

/// @p dividend / @p divisor rounded to the nearest, halves up; the divisor is positive.
constexpr qint64 roundedQuotient(qint64 dividend, qint64 divisor)
{
    return floorQuotient(2 * dividend + divisor, 2 * divisor);
}

} // namespace material
