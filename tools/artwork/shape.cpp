// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/shape.h"

#include "tools/artwork/fixedPoint.h"

#include <algorithm>
#include <cstddef>

using namespace artwork;

namespace
{

point turnedPoint(point p, qint32 angle)
{
    const qint64 s = sine(angle);
    const qint64 c = cosine(angle);
    return {static_cast<qint32>(roundedQuotient(p.x * c - p.y * s, unity)),
            static_cast<qint32>(roundedQuotient(p.x * s + p.y * c, unity))};
}

template <class Change> shape changed(const shape &original, const Change &change)
{
    shape result = original;
    for (contour &line : result)
        std::transform(line.begin(), line.end(), line.begin(), change);
    return result;
}

contour circleLine(point centre, qint32 radius)
{
    const qint32 corners = radius > 40 * pixel ? 512 : 64;
    contour line;
    for (qint32 i = 0; i < corners; ++i) {
        const point p = polar(i * (fullTurn / corners), radius);
        line.push_back({centre.x + p.x, centre.y + p.y});
    }
    return line;
}

/// A coordinate of the parabola from the midpoint of a and b to that of b and c.
qint32 onParabola(qint32 a, qint32 b, qint32 c, qint32 part, qint32 parts)
{
    const qint64 k = part;
    const qint64 n = parts;
    const qint64 sum = (n - k) * (n - k) * (a + b) + 4 * k * (n - k) * b + k * k * (b + c);
    return static_cast<qint32>(roundedQuotient(sum, 2 * n * n));
}

} // namespace

qint64 artwork::distance(point a, point b)
{
    const qint64 dx = a.x - b.x;
    const qint64 dy = a.y - b.y;
    return squareRoot(dx * dx + dy * dy);
}

shape artwork::rectangle(point topLeft, point bottomRight)
{
    return {{topLeft, {bottomRight.x, topLeft.y}, bottomRight, {topLeft.x, bottomRight.y}}};
}

shape artwork::circle(point centre, qint32 radius)
{
    return {circleLine(centre, radius)};
}

shape artwork::ring(point centre, qint32 inner, qint32 outer)
{
    return {circleLine(centre, inner), circleLine(centre, outer)};
}

shape artwork::bar(point from, point to, qint32 width)
{
    const qint64 size = std::max<qint64>(1, distance(from, to));
    const auto offset = [&](qint32 extent) {
        return static_cast<qint32>(roundedQuotient(qint64(extent) * width, 2 * size));
    };
    const qint32 dx = offset(from.y - to.y);
    const qint32 dy = offset(to.x - from.x);
    return {{{from.x + dx, from.y + dy},
             {to.x + dx, to.y + dy},
             {to.x - dx, to.y - dy},
             {from.x - dx, from.y - dy}}};
}

shape artwork::star(qint32 points, qint32 inner, qint32 outer)
{
    contour line;
    for (qint32 i = 0; i < 2 * points; ++i)
        line.push_back(polar(i * fullTurn / (2 * points), i % 2 == 0 ? outer : inner));
    return {line};
}

shape artwork::curve(const contour &guides)
{
    constexpr qint32 parts = 16;
    contour line;
    const std::size_t count = guides.size();
    for (std::size_t i = 0; i < count; ++i) {
        const point a = guides[(i + count - 1) % count];
        const point b = guides[i];
        const point c = guides[(i + 1) % count];
        for (qint32 part = 0; part < parts; ++part)
            line.push_back(
                {onParabola(a.x, b.x, c.x, part, parts), onParabola(a.y, b.y, c.y, part, parts)});
    }
    return {line};
}

shape artwork::petal(qint32 inner, qint32 outer, qint32 halfWidth, qint32 belly)
{
    const qint32 middle = inner + (outer - inner) * belly / 100;
    const qint32 shoulder = (outer - inner) / 6;
    return curve({{0, -inner},
                  {0, -inner},
                  {halfWidth, -middle + shoulder},
                  {halfWidth, -middle - shoulder},
                  {0, -outer},
                  {0, -outer},
                  {-halfWidth, -middle - shoulder},
                  {-halfWidth, -middle + shoulder}});
}

shape artwork::moved(const shape &original, point by)
{
    return changed(original, [by](point p) { return point{p.x + by.x, p.y + by.y}; });
}

shape artwork::turned(const shape &original, qint32 angle)
{
    return changed(original, [angle](point p) { return turnedPoint(p, angle); });
}

shape artwork::mirrored(const shape &original)
{
    return changed(original, [](point p) { return point{-p.x, p.y}; });
}

contour artwork::symmetric(const contour &rightHalf)
{
    contour line = rightHalf;
    for (auto p = rightHalf.rbegin(); p != rightHalf.rend(); ++p) {
        if (p->x != 0)
            line.push_back({-p->x, p->y});
    }
    return line;
}

point artwork::polar(qint32 angle, qint32 radius)
{
    return turnedPoint({0, -radius}, angle);
}
