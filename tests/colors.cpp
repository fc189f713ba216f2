// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/colors.h"

#include "tests/opaque.h"
#include "tests/pixel.h"
#include "tests/trigonometry.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

struct glow {
    float x;
    float y;
};

/// All that the pixels of one frame share.
struct lighting {
    std::array<glow, 4> glows;
    /// What a distance in pixels is multiplied with before it is taken off the intensity.
    float scale;
    float intensity;
};

/// A quarter turn, rounded. The glows have always been this far apart.
constexpr float quarterTurn = 1.57075F;

lighting lightingAt(float time, int frameWidth, int frameHeight)
{
    const auto width = static_cast<float>(frameWidth);
    const auto height = static_cast<float>(frameHeight);
    lighting light = {};
    // The width of the standard frame, whatever the size of this one: a glow is always as wide in
    // proportion.
    light.scale = 3820.0F / width * 0.15F;
    light.intensity = 255.0F;
    for (std::size_t i = 0; i < light.glows.size(); ++i) {
        const float turn = time + static_cast<float>(i) * quarterTurn;
        light.glows[i].x = width * (1.0F / 3.0F) * sine(turn) + width * 0.5F;
        light.glows[i].y = height * (1.0F / 3.0F) * cosine(turn) + height * 0.5F;
    }
    return light;
}

float lightOf(const glow &source, float x, float y, float scale, float intensity)
{
    const float dx = source.x - x;
    const float dy = source.y - y;
    const float distance = std::sqrt(dy * dy + dx * dx) * scale;
    return distance > intensity ? 0.0F : intensity - distance;
}

quint32 clipped(float channel, float intensity)
{
    return static_cast<quint32>(static_cast<qint32>(std::min(channel, intensity)));
}

/// Every pixel works out its whole distances: the vertical parts are the same for a row, and
/// compilers would take more or less of them out of the loop.
void renderRow(quint32 *pixels, int y, int width, const lighting &shared)
{
    const lighting light = shared;
    auto fy = static_cast<float>(y);
    for (int x = 0; x < width; ++x) {
        const auto fx = static_cast<float>(x);
        makeOpaque(fy);
        const float red = lightOf(light.glows[0], fx, fy, light.scale, light.intensity);
        const float green = lightOf(light.glows[1], fx, fy, light.scale, light.intensity);
        const float blue = lightOf(light.glows[2], fx, fy, light.scale, light.intensity);
        const float white = lightOf(light.glows[3], fx, fy, light.scale, light.intensity);
        pixels[x] = opaquePixel(clipped(red + white, light.intensity),
                                clipped(green + white, light.intensity),
                                clipped(blue + white, light.intensity));
    }
}

} // namespace

colors::colors(quint32 mode) : multicore(mode) {}

bool colors::setup(int newWidth, int newHeight)
{
    if (!testBase::setup(newWidth, newHeight))
        return false;
    fillBlack();
    time = 0;
    return true;
}

/// The blank before the empty text belongs to the name: results are kept under it.
QString colors::getName() const
{
    return QStringLiteral("colors %1")
        .arg(isMulticore() ? QStringLiteral(" (multicore)") : QString());
}

void colors::run()
{
    time += 0.04F;
    const lighting light = lightingAt(time, width, height);
    const int rows = height;
#pragma omp parallel for schedule(static) if (multicore == 1)
    for (int y = 0; y < rows; ++y)
        renderRow(row(y), y, width, light);
}
