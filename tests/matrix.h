// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

struct vector4 {
    float x;
    float y;
    float z;
    float w;
};

/// Four rows; component k of a product with a vector is row k times the vector.
using matrix4 = std::array<vector4, 4>;

inline float dotProduct(const vector4 &a, const vector4 &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

matrix4 product(const matrix4 &a, const matrix4 &b);

/// Right-handed rotations about one axis, in radians.
matrix4 rotationX(float angle);
matrix4 rotationY(float angle);
matrix4 rotationZ(float angle);

/// What a projection shows: the edges of the near plane, and the distances of both planes.
struct frustum {
    float left;
    float right;
    float bottom;
    float top;
    float nearPlane;
    float farPlane;
};
/// A perspective projection, with its off-diagonal entries transposed to where a product by rows
/// would want them: the vertex test has always been measured with them in these places.
matrix4 projection(const frustum &extents);
