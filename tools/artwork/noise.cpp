// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/noise.h"

#include "tools/artwork/fixedPoint.h"

using namespace artwork;

namespace
{

constexpr qint64 whole = 1024;

/// The smoothstep polynomial of a share in 1024ths.
qint64 smoothstep(qint64 share)
{
    return share * share * (3 * whole - 2 * share) / (whole * whole);
}

} // namespace

// Shifts and multipliers of the last lines: the 32-bit finaliser of MurmurHash3 (Austin Appleby,
// public domain).
quint32 artwork::placeHash(qint32 x, qint32 y, quint32 seed)
{
    quint32 h = static_cast<quint32>(x) * 0x9E3779B1U ^ static_cast<quint32>(y) * 0x85EBCA77U
                ^ seed * 0xC2B2AE3DU;
    h = (h ^ h >> 16) * 0x85EBCA6BU;
    h = (h ^ h >> 13) * 0xC2B2AE35U;
    return (h ^ h >> 16) & 0xFFFFU;
}

qint32 artwork::smoothNoise(point p, qint32 size, quint32 seed)
{
    const auto column = static_cast<qint32>(floorQuotient(p.x, size));
    const auto row = static_cast<qint32>(floorQuotient(p.y, size));
    const qint64 right = smoothstep((p.x - qint64(column) * size) * whole / size);
    const qint64 down = smoothstep((p.y - qint64(row) * size) * whole / size);
    const auto corner = [&](qint32 dx, qint32 dy) {
        return static_cast<qint64>(placeHash(column + dx, row + dy, seed) >> 6);
    };
    const qint64 top = corner(0, 0) * (whole - right) + corner(1, 0) * right;
    const qint64 bottom = corner(0, 1) * (whole - right) + corner(1, 1) * right;
    return static_cast<qint32>((top * (whole - down) + bottom * down) / (whole * whole));
}

qint32 artwork::cloudNoise(point p, qint32 size, quint32 seed)
{
    qint32 sum = 0;
    for (qint32 octave = 0; octave < 4; ++octave)
        sum += smoothNoise(p, size >> octave, seed + static_cast<quint32>(octave)) * (8 >> octave);
    return sum / 15;
}
