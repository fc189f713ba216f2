// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <vector>

namespace artwork
{

/// Canvas units are 16ths of a pixel.
constexpr qint32 pixel = 16;

struct point {
    qint32 x = 0;
    qint32 y = 0;
};

/// A closed polygon; its last corner is joined to the first.
using contour = std::vector<point>;
/// The contours of one area; an inner one cuts a hole.
using shape = std::vector<contour>;

/// A point given in pixels.
constexpr point at(qint32 x, qint32 y)
{
    return {x * pixel, y * pixel};
}

qint64 distance(point a, point b);

shape rectangle(point topLeft, point bottomRight);
shape circle(point centre, qint32 radius);
/// The area between two circles.
shape ring(point centre, qint32 inner, qint32 outer);
/// A straight bar with square ends.
shape bar(point from, point to, qint32 width);
/// A star around the origin with its first point upwards.
shape star(qint32 points, qint32 inner, qint32 outer);
/// A closed quadratic B-spline with the given control points. One given twice in a row is a corner
/// that the curve goes through.
shape curve(const contour &guides);
/// A leaf along the y axis with its tips at -inner and -outer, widest at @p belly per cent of the
/// way from the first to the second.
shape petal(qint32 inner, qint32 outer, qint32 halfWidth, qint32 belly);

shape moved(const shape &original, point by);
/// Turned clockwise about the origin.
shape turned(const shape &original, qint32 angle);
/// Mirrored across the y axis.
shape mirrored(const shape &original);
/// A contour from its right half, given from top to bottom, and the mirror image of that.
contour symmetric(const contour &rightHalf);

/// The point at distance @p radius from the origin in direction @p angle, clockwise from up.
point polar(qint32 angle, qint32 radius);

} // namespace artwork
