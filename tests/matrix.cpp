// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/matrix.h"

#include "tests/trigonometry.h"

matrix4 product(const matrix4 &a, const matrix4 &b)
{
    matrix4 result = {};
    for (std::size_t k = 0; k < 4; ++k) {
        result[k] = {dotProduct(a[k], {b[0].x, b[1].x, b[2].x, b[3].x}),
                     dotProduct(a[k], {b[0].y, b[1].y, b[2].y, b[3].y}),
                     dotProduct(a[k], {b[0].z, b[1].z, b[2].z, b[3].z}),
                     dotProduct(a[k], {b[0].w, b[1].w, b[2].w, b[3].w})};
    }
    return result;
}

matrix4 rotationX(float angle)
{
    const float c = cosine(angle);
    const float s = sine(angle);
    return {{{1, 0, 0, 0}, {0, c, -s, 0}, {0, s, c, 0}, {0, 0, 0, 1}}};
}

matrix4 rotationY(float angle)
{
    const float c = cosine(angle);
    const float s = sine(angle);
    return {{{c, 0, s, 0}, {0, 1, 0, 0}, {-s, 0, c, 0}, {0, 0, 0, 1}}};
}

matrix4 rotationZ(float angle)
{
    const float c = cosine(angle);
    const float s = sine(angle);
    return {{{c, -s, 0, 0}, {s, c, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
}

matrix4 projection(const frustum &extents)
{
    const auto [l, r, b, t, n, f] = extents;
    return {{{2 * n / (r - l), 0, 0, 0},
             {0, 2 * n / (t - b), 0, 0},
             {(r + l) / (r - l), (t + b) / (t - b), -(f + n) / (f - n), -1},
             {0, 0, -2 * f * n / (f - n), 0}}};
}
