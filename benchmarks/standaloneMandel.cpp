// SPDX-License-Identifier: GPL-3.0-or-later
#include "standaloneLoops.h"

namespace
{

template <bool isKept> int iterationsAt(float re, float im, float zero)
{
    float a = 0;
    float b = 0;
    float zoom = 1;
    int n = 0;
    while (n < 64) {
        ++n;
        if constexpr (isKept)
            zoom += zero;
        const float s = 1.0F / zoom;
        const float b2 = 2.0F * a * b + s * im;
        a = a * a - b * b + s * re;
        b = b2;
        if (a * a + b * b > 4.0F)
            break;
    }
    return n;
}

template <bool isKept>
void renderMandelRow(std::uint32_t *row, int width, int height, int y,
                     const std::int32_t (*palette)[4], float zero)
{
    const float r = 1.0F / float(width);
    const float im = float(y) / float(height) * 2.5F - 1.25F;
    for (int x = 0; x < width; ++x) {
        const float re = float(x) * r * 2.5F - 2.0F;
        const int n = iterationsAt<isKept>(re, im, zero);
        std::uint32_t pixel = 0xFF000000U;
        if (n < 64) {
            pixel |= static_cast<std::uint32_t>(palette[n][1]) << 16;
            pixel |= static_cast<std::uint32_t>(palette[n][2]) << 8;
            pixel |= static_cast<std::uint32_t>(palette[n][3]);
        }
        row[x] = pixel;
    }
}

} // namespace

void standaloneMandel(std::uint32_t *frame, int width, int height, const std::int32_t (*palette)[4],
                      keeping kept)
{
    const auto zero = static_cast<float>(unknownZero);
    const auto renderRow =
        kept == keeping::nothing ? renderMandelRow<false> : renderMandelRow<true>;
    for (int y = 0; y < height; ++y) {
        renderRow(frame + static_cast<std::int64_t>(y) * width, width, height, y, palette, zero);
    }
}
