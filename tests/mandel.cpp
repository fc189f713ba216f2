// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/mandel.h"

#include "tests/pixel.h"

#include <algorithm>
#include <cstddef>

namespace
{

constexpr int maxIterations = 64;
constexpr float zoomFactor = 1.0F;
constexpr float escapeBound = 4.0F;

/// The number of iterations after which c escapes, or maxIterations. The zoom is volatile, not just
/// opaque, so that it is read from memory and its division made in each iteration: the compiler
/// would see the constant otherwise, and the work of a pixel would not be what other machines have
/// been measured with.
int escapeTime(float cRe, float cIm, const volatile float &zoom)
{
    float zRe = 0;
    float zIm = 0;
    int n = 0;
    while (n < maxIterations) {
        ++n;
        const float scale = 1.0F / zoom;
        const float newIm = 2.0F * zRe * zIm + scale * cIm;
        const float newRe = zRe * zRe - zIm * zIm + scale * cRe;
        zRe = newRe;
        zIm = newIm;
        if (zRe * zRe + zIm * zIm > escapeBound)
            break;
    }
    return n;
}

/// Red reaches 380 in the palette; above 255 it loses its ninth bit into the opaque alpha, which
/// is part of the look of the picture.
quint32 pixelOf(const mandel::colour &colour)
{
    return opaquePixel(static_cast<quint32>(colour.red), static_cast<quint32>(colour.green),
                       static_cast<quint32>(colour.blue));
}

/// Renders row @p y of a frame that always shows -2.0 to 0.5 and -1.25 to 1.25, whatever its shape.
void renderRow(quint32 *pixels, int y, int width, int height, const mandel::colourTable &palette,
               const volatile float &zoom)
{
    const float r = 1.0F / static_cast<float>(width);
    const float cIm = static_cast<float>(y) / static_cast<float>(height) * 2.5F - 1.25F;
    for (int x = 0; x < width; ++x) {
        const float cRe = static_cast<float>(x) * r * 2.5F - 2.0F;
        const int n = escapeTime(cRe, cIm, zoom);
        pixels[x] = n < maxIterations ? pixelOf(palette[static_cast<std::size_t>(n)]) : opaqueBlack;
    }
}

} // namespace

mandel::mandel(quint32 mode) : multicore(mode) {}

bool mandel::setup(int newWidth, int newHeight)
{
    if (!testBase::setup(newWidth, newHeight))
        return false;
    frameStep = 1;
    frameCounter = 0;
    fillBlack();
    buildPalette();
    return true;
}

QString mandel::getName() const
{
    return QStringLiteral("mandel%1")
        .arg(isMulticore() ? QStringLiteral(" (multicore)") : QString());
}

void mandel::preRun()
{
    std::rotate(palette.begin(), palette.begin() + 1, palette.end());
}

void mandel::run()
{
    frameCounter += frameStep;
    const volatile float zoom = zoomFactor;
    const int rows = getHeight();
#pragma omp parallel for schedule(dynamic, 1) if (multicore == 1)
    for (int y = 0; y < rows; ++y)
        renderRow(row(y), y, width, height, palette, zoom);
}

void mandel::buildPalette()
{
    for (qint32 k = 0; k < 64; ++k) {
        const qint32 i = 4 * k;
        const auto entry = static_cast<std::size_t>(k);
        palette[entry] = {255, i + 128, i, 0};
        palette[64 + entry] = {255, 64, 255, i};
        palette[128 + entry] = {255, 64, 255 - i, 255};
        palette[192 + entry] = {255, 64, 0, 255 - i};
    }
}
