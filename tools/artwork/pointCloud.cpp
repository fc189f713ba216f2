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

using material::roundedQuotient;

/// A vector whose length 1 is written 2^28: products of two components fit into 64 bits.
constexpr qint64 length = qint64(1) << 28;
constexpr qint64 goldenRatio = 434345689; // (1 + sqrt 5) / 2 of that length
constexpr int subdivisions = 5;

constexpr qint64 decimals = 10000;
constexpr qint64 radius = 150 * decimals;

using vector = std::array<qint64, 3>;
using triangle = std::array<std::size_t, 3>;

struct mesh {
    std::vector<vector> points;
    std::vector<triangle> faces;
};

qint64 product(const vector &a, const vector &b)
{
    return roundedQuotient(a[0] * b[0] + a[1] * b[1] + a[2] * b[2], length);
}

vector normalised(const vector &v)
{
    const qint64 size = material::squareRoot(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    return {roundedQuotient(v[0] * length, size), roundedQuotient(v[1] * length, size),
            roundedQuotient(v[2] * length, size)};
}

/// The corners are the cyclic permutations of (0, +-1, +-golden ratio), so that the middle of an
/// edge, and with it a point of every subdivision, lies straight below the centre.
mesh icosahedron()
{
    constexpr qint64 a = length;
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

/// Splits every face into four at the middles of its edges, which move out to the unit sphere.
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

/// The Chebyshev polynomial of @p degree: a wave that runs over the sphere along an axis.
qint64 wave(int degree, qint64 x)
{
    qint64 previous = length;
    qint64 current = x;
    for (int n = 1; n < degree; ++n)
        previous = std::exchange(current, 2 * roundedQuotient(x * current, length) - previous);
    return current;
}

/// The height of the relief in direction @p point, a fraction of the radius.
qint64 relief(const vector &point)
{
    struct swell {
        vector axis;
        int degree;
        /// The height of the swell is the radius divided by this.
        qint64 divisor;
    };
    static const swell swells[] = {
        {normalised({2 * length / 3, length / 3, length}), 3, 75},
        {normalised({-length, length / 2, length / 5}), 5, 90},
        {normalised({length / 4, length, -length / 3}), 4, 110},
    };
    qint64 height = 0;
    for (const swell &s : swells)
        height += wave(s.degree, product(point, s.axis)) / s.divisor;
    return height;
}

/// Writes a coordinate given in 10,000ths; a zero has no sign.
QByteArray written(qint64 value)
{
    const qint64 size = value < 0 ? -value : value;
    return (value < 0 ? QByteArrayLiteral("-") : QByteArray()) + QByteArray::number(size / decimals)
           + '.' + QByteArray::number(size % decimals).rightJustified(4, '0');
}

} // namespace

QByteArray material::pointCloudText()
{
    mesh globe = icosahedron();
    for (int i = 0; i < subdivisions; ++i)
        subdivide(globe);

    const qint64 ground = relief({0, 0, -length});
    QByteArray text;
    for (const vector &point : globe.points) {
        const qint64 height = roundedQuotient((length + relief(point) - ground) * radius, length);
        const auto coordinate = [&](std::size_t axis) {
            return roundedQuotient(point[axis] * height, length);
        };
        text += written(coordinate(0)) + ' ' + written(coordinate(1)) + ' '
                + written(coordinate(2) + radius) + "\r\n";
    }
    return text;
}
