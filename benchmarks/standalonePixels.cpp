// SPDX-License-Identifier: GPL-3.0-or-later
#include "standaloneLoops.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

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
    float fy = float(y);
    for (int x = 0; x < width; ++x) {
        const float fx = float(x);
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

void standaloneLines(std::uint32_t *frame, int width, int height, int lineCount)
{
    const int n = static_cast<int>(std::sqrt(double(lineCount)));
    for (int fan = 0; fan < n; ++fan) {
        const int x0 = std::rand() % width;
        const int y0 = std::rand() % height;
        std::uint32_t colour = static_cast<std::uint32_t>(std::rand()) << 8 | 0xFF000000U;
        colour |= static_cast<std::uint32_t>(std::rand());
        for (int line = 0; line < n; ++line) {
            const int x1 = std::rand() % width;
            const int y1 = std::rand() % height;
            const int dx = std::abs(x1 - x0);
            const int dy = -std::abs(y1 - y0);
            const int sx = x0 < x1 ? 1 : -1;
            const int sy = y0 < y1 ? 1 : -1;
            int error = 2 * (dx + dy);
            int x = x0;
            int y = y0;
            for (;;) {
                frame[static_cast<std::int64_t>(y) * width + x] = colour;
                if (x == x1 && y == y1)
                    break;
                const int before = error;
                if (before > dy) {
                    error += 2 * dy;
                    x += sx;
                }
                if (before < dx) {
                    error += 2 * dx;
                    y += sy;
                }
            }
        }
    }
}

void standaloneMotionBlur(std::uint32_t *frame, int width, int height, blurPhase &phase)
{
    phase.weight += phase.step;
    if (phase.weight >= 128)
        phase.step = -1;
    if (phase.weight < 1)
        phase.step = 1;
    const auto wl = static_cast<std::uint32_t>(phase.weight);
    const auto wr = static_cast<std::uint32_t>(128 - phase.weight);
    for (int y = 1; y < height - 1; ++y) {
        std::uint32_t *row = frame + static_cast<std::int64_t>(y) * width;
        for (int x = 1; x < width - 1; ++x) {
            const std::uint32_t l = row[x - 1];
            const std::uint32_t r = row[x + 1];
            const std::uint32_t c = row[x];
            const std::uint32_t a = row[x - width];
            const std::uint32_t b = row[x + width];
            const std::uint32_t red = (l >> 16 & 255) * wl + (r >> 16 & 255) * wr
                                      + (c >> 16 & 255) * 31 + (a >> 16 & 255) * 64
                                      + (b >> 16 & 255) * 32;
            const std::uint32_t green = (l >> 8 & 255) * wl + (r >> 8 & 255) * wr
                                        + (c >> 8 & 255) * 31 + (a >> 8 & 255) * 64
                                        + (b >> 8 & 255) * 32;
            const std::uint32_t blue =
                (l & 255) * wl + (r & 255) * wr + (c & 255) * 31 + (a & 255) * 64 + (b & 255) * 32;
            row[x] = 0xFF000000U | std::min(red >> 8, 255U) << 16 | std::min(green >> 8, 255U) << 8
                     | std::min(blue >> 8, 255U);
        }
    }
}

void standaloneColors(std::uint32_t *frame, int width, int height, float &time, keeping kept,
                      bool multicore)
{
    time += 0.04F;
    glows light = {};
    for (int i = 0; i < 4; ++i) {
        const double turn = double(time + float(i) * 1.57075F);
        light.x[i] = float(width) * (1.0F / 3.0F) * float(std::sin(turn)) + float(width) * 0.5F;
        light.y[i] = float(height) * (1.0F / 3.0F) * float(std::cos(turn)) + float(height) * 0.5F;
    }
    light.scale = 3820.0F / float(width) * 0.15F;
    light.intensity = 255.0F;
    const auto zero = static_cast<float>(unknownZero);
    const auto renderRow =
        kept == keeping::nothing ? renderColorsRow<false> : renderColorsRow<true>;
#pragma omp parallel for schedule(static) if (multicore)
    for (int y = 0; y < height; ++y)
        renderRow(frame + static_cast<std::int64_t>(y) * width, width, y, light, zero);
}
