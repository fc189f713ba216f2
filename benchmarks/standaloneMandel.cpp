// SPDX-License-Identifier: GPL-3.0-or-later
#include "standaloneLoops.h"

namespace
{

/// Not a local variable: OpenMP would copy it, and its division would leave the innermost loop.
const volatile float zoom = 1;

} // namespace

void standaloneMandel(std::uint32_t *frame, int width, int height, const std::int32_t (*palette)[4],
                      bool multicore)
{
#pragma omp parallel for schedule(dynamic, 1) if (multicore)
    for (int y = 0; y < height; ++y) {
        const float r = 1.0F / float(width);
        const float im = float(y) / float(height) * 2.5F - 1.25F;
        for (int x = 0; x < width; ++x) {
            const float re = float(x) * r * 2.5F - 2.0F;
            float a = 0;
            float b = 0;
            int n = 0;
            while (n < 64) {
                ++n;
                const float s = 1.0F / zoom;
                const float b2 = 2.0F * a * b + s * im;
                a = a * a - b * b + s * re;
                b = b2;
                if (a * a + b * b > 4.0F)
                    break;
            }
            std::uint32_t pixel = 0xFF000000U;
            if (n < 64) {
                pixel |= static_cast<std::uint32_t>(palette[n][1]) << 16;
                pixel |= static_cast<std::uint32_t>(palette[n][2]) << 8;
                pixel |= static_cast<std::uint32_t>(palette[n][3]);
            }
            frame[static_cast<std::int64_t>(y) * width + x] = pixel;
        }
    }
}
