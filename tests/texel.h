// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/pixel.h"

/// A point of the texture, or a step over it: texels with 12 fraction bits. It wraps around.
struct texturePoint {
    quint32 u;
    quint32 v;
};

constexpr quint32 oneTexel = 4096;

/// A texture of 512 x 512 texels that repeats endlessly.
struct textureView {
    const quint32 *texels;
    quint32 width;

    Q_ALWAYS_INLINE quint32 at(quint32 u, quint32 v) const
    {
        return texels[(v >> 12 & 511U) * width + (u >> 12 & 511U)];
    }
};

// The rules by which a texture and the pixel of the previous frame make a new pixel. They are
// forced into the loop over the pixels: some compilers would call them there.

struct nearestTexel {
    Q_ALWAYS_INLINE static quint32 pixel(const textureView &texture, texturePoint at, quint32)
    {
        return texture.at(at.u, at.v);
    }
};

/// Bilinear, in the arithmetic of @p number. The weights are built from 4095, so that white comes
/// out as 254; this belongs to the picture.
template <typename number> struct linearTexel {
    Q_ALWAYS_INLINE static quint32 pixel(const textureView &texture, texturePoint at, quint32)
    {
        const auto fu = static_cast<number>(static_cast<qint32>(at.u & 4095U));
        const auto fv = static_cast<number>(static_cast<qint32>(at.v & 4095U));
        constexpr number full = 4095;
        const corners weights = {(full - fv) * (full - fu), fu * (full - fv), (full - fu) * fv,
                                 fv * fu};
        const quint32 texels[] = {texture.at(at.u, at.v), texture.at(at.u + oneTexel, at.v),
                                  texture.at(at.u, at.v + oneTexel),
                                  texture.at(at.u + oneTexel, at.v + oneTexel)};
        return opaquePixel(blend(weights, texels, redShift), blend(weights, texels, greenShift),
                           blend(weights, texels, blueShift));
    }

private:
    struct corners {
        number w00;
        number w10;
        number w01;
        number w11;
    };

    Q_ALWAYS_INLINE static quint32 blend(const corners &weights, const quint32 (&texels)[4],
                                         int shift)
    {
        return scaleDown(weights.w00 * component<number>(texels[0], shift)
                         + weights.w10 * component<number>(texels[1], shift)
                         + weights.w01 * component<number>(texels[2], shift)
                         + weights.w11 * component<number>(texels[3], shift));
    }
    Q_ALWAYS_INLINE static quint32 scaleDown(quint32 sum) { return sum >> 24; }
    Q_ALWAYS_INLINE static quint32 scaleDown(float sum)
    {
        return static_cast<quint32>(static_cast<qint32>(sum * 0x1p-24F));
    }
    Q_ALWAYS_INLINE static quint32 scaleDown(double sum)
    {
        return static_cast<quint32>(static_cast<qint32>(sum * 0x1p-24));
    }
};

/// The nearest texel, mixed one to seven with the pixel of the previous frame.
template <typename number> struct lastPixelTexel {
    Q_ALWAYS_INLINE static quint32 pixel(const textureView &texture, texturePoint at, quint32 old)
    {
        const quint32 texel = texture.at(at.u, at.v);
        return opaquePixel(blend(old, texel, redShift), blend(old, texel, greenShift),
                           blend(old, texel, blueShift));
    }

private:
    Q_ALWAYS_INLINE static quint32 blend(quint32 old, quint32 texel, int shift)
    {
        return scaleDown(component<number>(texel, shift)
                         + component<number>(old, shift) * number(7));
    }
    Q_ALWAYS_INLINE static quint32 scaleDown(quint32 sum) { return sum >> 3; }
    Q_ALWAYS_INLINE static quint32 scaleDown(float sum)
    {
        return static_cast<quint32>(static_cast<qint32>(sum * 0.125F));
    }
    Q_ALWAYS_INLINE static quint32 scaleDown(double sum)
    {
        return static_cast<quint32>(static_cast<qint32>(sum * 0.125));
    }
};
