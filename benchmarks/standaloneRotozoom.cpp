// SPDX-License-Identifier: GPL-3.0-or-later
#include "standaloneLoops.h"

#include <cmath>

namespace
{

/// Texture coordinates have 12 fraction bits and wrap around.
struct gridWalk {
    std::uint32_t u;
    std::uint32_t v;
    std::uint32_t uPerPixel;
    std::uint32_t vPerPixel;
    std::uint32_t uPerRow;
    std::uint32_t vPerRow;
};

std::uint32_t toFixed(double value)
{
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(value));
}

gridWalk nextWalk(rotozoomMotion &motion, int width, int height, std::uint32_t textureWidth)
{
    motion.zoom += motion.zoomStep;
    motion.angle += motion.angleStep;
    if (motion.zoom > textureWidth * 4096.0 / width || motion.zoom < 0)
        motion.zoomStep = -motion.zoomStep;
    const double c = std::cos(motion.angle);
    const double s = std::sin(motion.angle);
    const double left = -width * 0.5;
    const double top = -height * 0.5;
    const double centre = textureWidth * 0.5;
    const double u = (top * c - left * s) * motion.zoom / 4096.0 + centre;
    const double v = (top * s + left * c) * motion.zoom / 4096.0 + centre;
    return {toFixed(u * 4096.0),      toFixed(v * 4096.0),      toFixed(-s * motion.zoom),
            toFixed(c * motion.zoom), toFixed(c * motion.zoom), toFixed(s * motion.zoom)};
}

void renderNearestRow(std::uint32_t *out, int width, int y, const std::uint32_t *texture,
                      std::uint32_t textureWidth, const gridWalk &walk)
{
    std::uint32_t u = walk.u + static_cast<std::uint32_t>(y) * walk.uPerRow;
    std::uint32_t v = walk.v + static_cast<std::uint32_t>(y) * walk.vPerRow;
    const std::uint32_t du = walk.uPerPixel;
    const std::uint32_t dv = walk.vPerPixel;
    for (int x = 0; x < width; ++x) {
        out[x] = texture[(v >> 12 & 511) * textureWidth + (u >> 12 & 511)];
        u += du;
        v += dv;
    }
}

void renderDitheredRow(std::uint32_t *out, int width, int y, const std::uint32_t *texture,
                       std::uint32_t textureWidth, const gridWalk &walk)
{
    // By the parity of the row; the first offset is that of an even column.
    const std::uint32_t offsets[2][4] = {{1024, 0, 2048, 3072}, {3072, 2048, 0, 1024}};
    const std::uint32_t(&moved)[4] = offsets[y & 1];
    const std::uint32_t du = walk.uPerPixel;
    const std::uint32_t dv = walk.vPerPixel;
    // The two kinds of columns as two walks, side by side.
    std::uint32_t u0 = walk.u + static_cast<std::uint32_t>(y) * walk.uPerRow + moved[0];
    std::uint32_t v0 = walk.v + static_cast<std::uint32_t>(y) * walk.vPerRow + moved[1];
    std::uint32_t u1 = u0 - moved[0] + moved[2] + du;
    std::uint32_t v1 = v0 - moved[1] + moved[3] + dv;
    for (int x = 0; x < width; x += 2) {
        out[x] = texture[(v0 >> 12 & 511) * textureWidth + (u0 >> 12 & 511)];
        u0 += 2 * du;
        v0 += 2 * dv;
        if (x + 1 == width)
            return;
        out[x + 1] = texture[(v1 >> 12 & 511) * textureWidth + (u1 >> 12 & 511)];
        u1 += 2 * du;
        v1 += 2 * dv;
    }
}

void renderLinearRow(std::uint32_t *out, int width, int y, const std::uint32_t *texture,
                     std::uint32_t textureWidth, const gridWalk &walk)
{
    std::uint32_t u = walk.u + static_cast<std::uint32_t>(y) * walk.uPerRow;
    std::uint32_t v = walk.v + static_cast<std::uint32_t>(y) * walk.vPerRow;
    const std::uint32_t du = walk.uPerPixel;
    const std::uint32_t dv = walk.vPerPixel;
    for (int x = 0; x < width; ++x) {
        const std::uint32_t fu = u & 4095;
        const std::uint32_t fv = v & 4095;
        const std::uint32_t w00 = (4095 - fv) * (4095 - fu);
        const std::uint32_t w10 = fu * (4095 - fv);
        const std::uint32_t w01 = (4095 - fu) * fv;
        const std::uint32_t w11 = fv * fu;
        const std::uint32_t right = u + 4096;
        const std::uint32_t below = v + 4096;
        const std::uint32_t t00 = texture[(v >> 12 & 511) * textureWidth + (u >> 12 & 511)];
        const std::uint32_t t10 = texture[(v >> 12 & 511) * textureWidth + (right >> 12 & 511)];
        const std::uint32_t t01 = texture[(below >> 12 & 511) * textureWidth + (u >> 12 & 511)];
        const std::uint32_t t11 = texture[(below >> 12 & 511) * textureWidth + (right >> 12 & 511)];
        const std::uint32_t red = w00 * (t00 >> 16 & 255) + w10 * (t10 >> 16 & 255)
                                  + w01 * (t01 >> 16 & 255) + w11 * (t11 >> 16 & 255);
        const std::uint32_t green = w00 * (t00 >> 8 & 255) + w10 * (t10 >> 8 & 255)
                                    + w01 * (t01 >> 8 & 255) + w11 * (t11 >> 8 & 255);
        const std::uint32_t blue =
            w00 * (t00 & 255) + w10 * (t10 & 255) + w01 * (t01 & 255) + w11 * (t11 & 255);
        out[x] = 0xFF000000U | red >> 24 << 16 | green >> 24 << 8 | blue >> 24;
        u += du;
        v += dv;
    }
}

void renderLastPixelRow(std::uint32_t *out, int width, int y, const std::uint32_t *texture,
                        std::uint32_t textureWidth, const gridWalk &walk)
{
    std::uint32_t u = walk.u + static_cast<std::uint32_t>(y) * walk.uPerRow;
    std::uint32_t v = walk.v + static_cast<std::uint32_t>(y) * walk.vPerRow;
    const std::uint32_t du = walk.uPerPixel;
    const std::uint32_t dv = walk.vPerPixel;
    for (int x = 0; x < width; ++x) {
        const std::uint32_t old = out[x];
        const std::uint32_t texel = texture[(v >> 12 & 511) * textureWidth + (u >> 12 & 511)];
        const std::uint32_t red = ((texel >> 16 & 255) + (old >> 16 & 255) * 7) >> 3;
        const std::uint32_t green = ((texel >> 8 & 255) + (old >> 8 & 255) * 7) >> 3;
        const std::uint32_t blue = ((texel & 255) + (old & 255) * 7) >> 3;
        out[x] = 0xFF000000U | red << 16 | green << 8 | blue;
        u += du;
        v += dv;
    }
}

/// Called through a pointer: inlined into the loop over the rows, g++ 12 runs out of registers.
using rowRenderer = decltype(&renderNearestRow);

rowRenderer rendererOf(texelRule rule)
{
    switch (rule) {
    case texelRule::dithered:
        return renderDitheredRow;
    case texelRule::linear:
        return renderLinearRow;
    case texelRule::lastPixel:
        return renderLastPixelRow;
    case texelRule::nearest:
        break;
    }
    return renderNearestRow;
}

} // namespace

void standaloneRotozoom(std::uint32_t *frame, int width, int height, const std::uint32_t *texture,
                        std::uint32_t textureWidth, rotozoomMotion &motion, texelRule rule,
                        bool multicore)
{
    const gridWalk walk = nextWalk(motion, width, height, textureWidth);
    const rowRenderer renderRow = rendererOf(rule);
#pragma omp parallel for schedule(static) if (multicore)
    for (int y = 0; y < height; ++y) {
        renderRow(frame + static_cast<std::int64_t>(y) * width, width, y, texture, textureWidth,
                  walk);
    }
}
