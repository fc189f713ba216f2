// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <vector>

namespace material
{

/// Lengths on a canvas count in 16ths of a pixel.
constexpr qint32 pixel = 16;

struct point {
    qint32 x = 0;
    qint32 y = 0;
};

/// A closed line; the last corner is joined with the first.
using contour = std::vector<point>;
/// Closed lines that bound an area together: an inner one cuts a hole.
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
/// A smooth closed curve that is drawn towards the given points; a point given twice in a row is a
/// corner that the curve goes through.
shape curve(const contour &guides);
/// A leaf with two pointed ends on the y axis, from -inner up to -outer, widest at @p belly per
/// cent of that way.
shape petal(qint32 inner, qint32 outer, qint32 halfWidth, qint32 belly);

shape moved(const shape &original, point by);
/// Turned clockwise about the origin.
shape turned(const shape &original, qint32 angle);
/// Mirrored at the y axis.
shape mirrored(const shape &original);
/// The right half of a contour, from top to bottom, completed by its mirror image.
contour symmetric(const contour &rightHalf);

/// The point of the origin turned to @p angle, clockwise from straight up, at @p radius.
point polar(qint32 angle, qint32 radius);

} // namespace material
