// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

/// Integer arithmetic, so that pictures and points come out the same on every machine: mathematical
/// libraries and contracted multiplications round differently from one to the next.
namespace artwork
{

/// Angles are in 4096ths of a turn.
constexpr qint32 fullTurn = 4096;
/// Sines are in 16384ths.
constexpr qint32 unity = 16384;

/// The sine of any angle.
qint32 sine(qint32 angle);

inline qint32 cosine(qint32 angle)
{
    return sine(angle + fullTurn / 4);
}

/// The square root of @p value, which is not negative, rounded down.
qint64 squareRoot(qint64 value);

/// @p dividend / @p divisor rounded down; the divisor is positive.
constexpr qint64 floorQuotient(qint64 dividend, qint64 divisor)
{
    const qint64 quotient = dividend / divisor;
    return dividend % divisor < 0 ? quotient - 1 : quotient;
}

/// @p dividend / @p divisor rounded to nearest, halves up; the divisor is positive.
constexpr qint64 roundedQuotient(qint64 dividend, qint64 divisor)
{
    return floorQuotient(2 * dividend + divisor, 2 * divisor);
}

} // namespace artwork
