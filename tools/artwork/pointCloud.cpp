// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/pointCloud.h"

#include "tools/artwork/fixedPoint.h"

#include <array>
#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace
{

using artwork::roundedQuotient;

/// The 1 of fixed-point vectors; the product of two components fits into 64 bits.
constexpr qint64 one = qint64(1) << 28;
constexpr qint64 goldenRatio = 434345689; // (1 + sqrt 5) / 2
constexpr int subdivisions = 5;

/// Coordinates have four decimals.
constexpr qint64 perUnit = 10000;
constexpr qint64 radius = 150 * perUnit;

using vector = std::array<qint64, 3>;
using triangle = std::array<std::size_t, 3>;

struct mesh {
    std::vector<vector> points;
    std::vector<triangle> faces;
};

qint64 dotProduct(const vector &a, const vector &b)
{
    return roundedQuotient(a[0] * b[0] + a[1] * b[1] + a[2] * b[2], one);
}

vector normalised(const vector &v)
{
    const qint64 size = artwork::squareRoot(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    return {roundedQuotient(v[0] * one, size), roundedQuotient(v[1] * one, size),
            roundedQuotient(v[2] * one, size)};
}

/// The corners are the cyclic permutations of (0, +-1, +-golden ratio), so that the midpoint of an
/// edge, which is a point of every subdivision, lies straight below the centre.
mesh icosahedron()
{
    constexpr qint64 a = one;
    constexpr qint64 b = goldenRatio;
    mesh solid;
    solid.points = {{-a, b, 0},  {a, b, 0},  {-a, -b, 0}, {a, -b, 0}, {0, -a, b},  {0, a, b},
                    {0, -a, -b}, {0, a, -b}, {b, 0, -a},  {b, 0, a},  {-b, 0, -a}, {-b, 0, a}};
    for (vector &point : solid.points)
        point = normalised(point);
    solid.faces = {{0, 11, 5}, {0, 5, 1},  {0, 1, 7},   {0, 7, 10}, {0, 10, 11},
                   {1, 5, 9},  {5, 11, 4}, {11, 10, 2}, {10, 7, 6}, {7, 1, 8},
                   {3, 9, 4},  {3, 4, 2},  {3, 2, 6},   {3, 6, 8},  {3, 8, 9},
                   {4, 9, 5},  {2, 4, 11}, {6, 2, 10},  {8, 6, 7},  {9, 8, 1}};
    return solid;
}

/// Splits every face into four at the midpoints of its edges, which are moved to the unit sphere.
void subdivide(mesh &solid)
{
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> middles;
    const auto middle = [&](std::size_t from, std::size_t to) {
        const auto [entry, isNew] = middles.try_emplace(std::minmax(from, to), solid.points.size());
        if (isNew) {
            const vector p = solid.points[from];
            const vector q = solid.points[to];
            solid.points.push_back(normalised({p[0] + q[0], p[1] + q[1], p[2] + q[2]}));
        }
        return entry->second;
    };
    std::vector<triangle> faces;
    for (const auto &[a, b, c] : solid.faces) {
        const std::size_t ab = middle(a, b);
        const std::size_t bc = middle(b, c);
        const std::size_t ca = middle(c, a);
        faces.insert(faces.end(), {{a, ab, ca}, {b, bc, ab}, {c, ca, bc}, {ab, bc, ca}});
    }
    solid.faces = std::move(faces);
}

/// The Chebyshev polynomial of @p degree: a wave along an axis of the sphere.
qint64 wave(int degree, qint64 x)
{
    qint64 previous = one;
    qint64 current = x;
    for (int n = 1; n < degree; ++n)
        previous = std::exchange(current, 2 * roundedQuotient(x * current, one) - previous);
    return current;
}

/// The height of the relief in direction @p point, as a fraction of the radius.
qint64 relief(const vector &point)
{
    struct swell {
        vector axis;
        int degree;
        /// The amplitude is the radius divided by this.
        qint64 divisor;
    };
    static const swell swells[] = {
        {normalised({2 * one / 3, one / 3, one}), 3, 75},
        {normalised({-one, one / 2, one / 5}), 5, 90},
        {normalised({one / 4, one, -one / 3}), 4, 110},
    };
    qint64 height = 0;
    for (const swell &s : swells)
        height += wave(s.degree, dotProduct(point, s.axis)) / s.divisor;
    return height;
}

/// The text of a coordinate given in 10,000ths; zero has no sign.
QByteArray coordinateText(qint64 value)
{
    const qint64 size = value < 0 ? -value : value;
    return (value < 0 ? QByteArrayLiteral("-") : QByteArray()) + QByteArray::number(size / perUnit)
           + '.' + QByteArray::number(size % perUnit).rightJustified(4, '0');
}

} // namespace

QByteArray artwork::pointCloudText()
{
    mesh globe = icosahedron();
    for (int i = 0; i < subdivisions; ++i)
        subdivide(globe);

    const qint64 ground = relief({0, 0, -one});
    QByteArray text;
    for (const vector &point : globe.points) {
        const qint64 height = roundedQuotient((one + relief(point) - ground) * radius, one);
        const auto coordinate = [&](std::size_t axis) {
            return roundedQuotient(point[axis] * height, one);
        };
        text += coordinateText(coordinate(0)) + ' ' + coordinateText(coordinate(1)) + ' '
                + coordinateText(coordinate(2) + radius) + "\r\n";
    }
    return text;
}
