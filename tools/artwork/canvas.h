// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/artwork/shape.h"

#include <QImage>

#include <functional>
#include <utility>
#include <vector>

namespace artwork
{

struct colour {
    qint32 red = 0;
    qint32 green = 0;
    qint32 blue = 0;

    bool operator==(const colour &) const = default;
};

/// A colour from six hexadecimal digits, as in 0xRRGGBB.
constexpr colour hex(quint32 digits)
{
    return {static_cast<qint32>(digits >> 16 & 0xFFU), static_cast<qint32>(digits >> 8 & 0xFFU),
            static_cast<qint32>(digits & 0xFFU)};
}

/// @p from at share 0, @p to at share 256, a blend between; other shares are clamped.
colour mix(const colour &from, const colour &to, qint64 share);

/// Computes the new colour of a point on the canvas from the point and the colour below.
using paint = std::function<colour(point, colour)>;

/// Positions in ascending order, each with its colour. Beyond the ends, the end colours continue.
using gradient = std::vector<std::pair<qint64, colour>>;

colour colourAt(const gradient &stops, qint64 position);
paint flat(const colour &tint);
/// Positions are distances from @p centre in canvas units.
paint radial(point centre, const gradient &stops);
/// Position 0 lies at @p from, position 256 at @p to.
paint linear(point from, point to, const gradient &stops);
/// Blends @p over with the colour below; an opacity of 256 hides it.
paint translucent(const paint &over, qint64 opacity);
/// A glow that fades from @p opacity at @p centre to nothing at @p radius.
paint glow(point centre, qint64 radius, const colour &tint, qint64 opacity);

/// A square picture that tiles without a seam: what leaves it on one side enters on the opposite
/// one. It has 4 x 4 samples per pixel, for smooth edges.
class canvas
{
public:
    /// @p side is in pixels.
    explicit canvas(qint32 side);

    /// Paints the inside of @p outline by the even-odd rule. The paint gets the points as they are
    /// in the outline, also where they wrap around to the opposite side.
    void fill(const shape &outline, const paint &how);
    void fillAll(const paint &how);
    /// Draws along the closed contours of @p outline, @p width units wide.
    void stroke(const shape &outline, qint32 width, const paint &how);

    /// The picture with 24 bits per pixel; each pixel is the mean of its samples.
    QImage toImage() const;

private:
    void fillRow(qint32 sampleY, std::vector<qint64> &crossings, const paint &how);

    qint32 side;
    std::vector<colour> samples;
};

} // namespace artwork
