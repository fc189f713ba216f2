// SPDX-License-Identifier: GPL-3.0-or-later
#include "standaloneLoops.h"

#include <algorithm>
#include <cmath>

namespace
{

struct glows {
    float x[4];
    float y[4];
    float scale;
    /// Not a constant: g++ would branch for the limits instead of taking minima.
    float intensity;
};

template <bool isKept>
void renderColorsRow(std::uint32_t *row, int width, int y, const glows &shared, float zero)
{
    const glows light = shared;
    const float full = light.intensity;
    auto fy = float(y);
    for (int x = 0; x < width; ++x) {
        const auto fx = float(x);
        if constexpr (isKept)
            fy += zero;
        const float dx0 = light.x[0] - fx;
        const float dy0 = light.y[0] - fy;
        const float d0 = std::sqrt(dy0 * dy0 + dx0 * dx0) * light.scale;
        const float dx1 = light.x[1] - fx;
        const float dy1 = light.y[1] - fy;
        const float d1 = std::sqrt(dy1 * dy1 + dx1 * dx1) * light.scale;
        const float dx2 = light.x[2] - fx;
        const float dy2 = light.y[2] - fy;
        const float d2 = std::sqrt(dy2 * dy2 + dx2 * dx2) * light.scale;
        const float dx3 = light.x[3] - fx;
        const float dy3 = light.y[3] - fy;
        const float d3 = std::sqrt(dy3 * dy3 + dx3 * dx3) * light.scale;
        const float red = d0 > full ? 0.0F : full - d0;
        const float green = d1 > full ? 0.0F : full - d1;
        const float blue = d2 > full ? 0.0F : full - d2;
        const float white = d3 > full ? 0.0F : full - d3;
        const auto r = static_cast<std::int32_t>(std::min(red + white, full));
        const auto g = static_cast<std::int32_t>(std::min(green + white, full));
        const auto b = static_cast<std::int32_t>(std::min(blue + white, full));
        row[x] = 0xFF000000U | static_cast<std::uint32_t>(r) << 16
                 | static_cast<std::uint32_t>(g) << 8 | static_cast<std::uint32_t>(b);
    }
}

} // namespace

void standaloneColors(std::uint32_t *frame, int width, int height, float &time, keeping kept)
{
    time += 0.04F;
    glows light = {};
    for (int i = 0; i < 4; ++i) {
        const auto turn = double(time + float(i) * 1.57075F);
        light.x[i] = float(width) * (1.0F / 3.0F) * float(std::sin(turn)) + float(width) * 0.5F;
        light.y[i] = float(height) * (1.0F / 3.0F) * float(std::cos(turn)) + float(height) * 0.5F;
    }
    light.scale = 3820.0F / float(width) * 0.15F;
    light.intensity = 255.0F;
    const auto zero = static_cast<float>(unknownZero);
    const auto renderRow =
        kept == keeping::nothing ? renderColorsRow<false> : renderColorsRow<true>;
    for (int y = 0; y < height; ++y)
        renderRow(frame + static_cast<std::int64_t>(y) * width, width, y, light, zero);
}
