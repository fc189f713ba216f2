// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/artwork/canvas.h"

namespace artwork
{

/// Paints on a canvas, with shapes and paints in coordinates relative to an origin.
class easel
{
public:
    easel(canvas &picture, point newOrigin) : target(picture), origin(newOrigin) {}

    void fill(const shape &part, const paint &how)
    {
        target.fill(moved(part, origin), placed(how));
    }

    /// Paints @p part and its mirror image across the y axis.
    void fillBoth(const shape &part, const paint &how)
    {
        fill(part, how);
        fill(mirrored(part), [how](point p, colour below) { return how({-p.x, p.y}, below); });
    }

    void stroke(const shape &part, qint32 width, const paint &how)
    {
        target.stroke(moved(part, origin), width, placed(how));
    }

private:
    paint placed(const paint &how) const
    {
        return [how, from = origin](point p, colour below) {
            return how({p.x - from.x, p.y - from.y}, below);
        };
    }

    canvas &target;
    point origin;
};

} // namespace artwork
