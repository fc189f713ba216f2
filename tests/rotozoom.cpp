// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/rotozoom.h"

#include "tests/truncate.h"

#include <omp.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace
{

using view = rotozoom::view;

texturePoint rowStart(const view &frame, int y)
{
    const auto row = static_cast<quint32>(y);
    return {frame.start.u + row * frame.perRow.u, frame.start.v + row * frame.perRow.v};
}

template <typename rule>
void renderRow(quint32 *pixels, int width, int y, textureView texture, const view &frame)
{
    const texturePoint step = frame.alongRow;
    texturePoint at = rowStart(frame, y);
    for (int x = 0; x < width; ++x) {
        pixels[x] = rule::pixel(texture, at, pixels[x]);
        at.u += step.u;
        at.v += step.v;
    }
}

/// Nearest texels, four pixels to the step, and those that are left at the end one by one.
void renderRowWide(quint32 *pixels, int width, int y, textureView texture, const view &frame)
{
    const texturePoint step = frame.alongRow;
    texturePoint at = rowStart(frame, y);
    int x = 0;
    for (; x + 4 <= width; x += 4) {
        pixels[x] = texture.at(at.u, at.v);
        pixels[x + 1] = texture.at(at.u + step.u, at.v + step.v);
        pixels[x + 2] = texture.at(at.u + 2 * step.u, at.v + 2 * step.v);
        pixels[x + 3] = texture.at(at.u + 3 * step.u, at.v + 3 * step.v);
        at.u += 4 * step.u;
        at.v += 4 * step.v;
    }
    for (; x < width; ++x) {
        pixels[x] = texture.at(at.u, at.v);
        at.u += step.u;
        at.v += step.v;
    }
}

/// Nearest texels at points that are moved by the parity of the pixel's row and column: the even
/// and the odd columns walk side by side, each by two steps.
void renderRowDithered(quint32 *pixels, int width, int y, textureView texture, const view &frame)
{
    const bool isOddRow = (y & 1) != 0;
    const texturePoint start = rowStart(frame, y);
    const texturePoint step = frame.alongRow;
    texturePoint even = {start.u + (isOddRow ? 3072U : 1024U), start.v + (isOddRow ? 2048U : 0U)};
    texturePoint odd = {start.u + step.u + (isOddRow ? 0U : 2048U),
                        start.v + step.v + (isOddRow ? 1024U : 3072U)};
    int x = 0;
    for (; x + 2 <= width; x += 2) {
        pixels[x] = texture.at(even.u, even.v);
        pixels[x + 1] = texture.at(odd.u, odd.v);
        even.u += 2 * step.u;
        even.v += 2 * step.v;
        odd.u += 2 * step.u;
        odd.v += 2 * step.v;
    }
    if (x < width)
        pixels[x] = texture.at(even.u, even.v);
}

/// Linear where this thread is selected, red elsewhere.
void renderRowSelected(quint32 *pixels, int width, int y, textureView texture, const view &frame)
{
    const int thread = omp_get_thread_num();
    if (frame.selection && thread < frame.selection->size() && frame.selection->at(thread) != 0)
        renderRow<linearTexel<quint32>>(pixels, width, y, texture, frame);
    else
        std::fill_n(pixels, width, 0xFFFF0000U);
}

struct modeEntry {
    const char *name;
    bool allThreads;
    void (*render)(quint32 *pixels, int width, int y, textureView texture, const view &frame);
};

constexpr modeEntry modes[] = {
    {"no", false, renderRow<nearestTexel>},
    {"no (wide)", false, renderRowWide},
    {"dithered", false, renderRowDithered},
    {"linear", false, renderRow<linearTexel<quint32>>},
    {"linear (multicore)", true, renderRow<linearTexel<quint32>>},
    {"linear float", false, renderRow<linearTexel<float>>},
    {"linear f32 (multicore)", true, renderRow<linearTexel<float>>},
    {"linear f64 (multicore)", true, renderRow<linearTexel<double>>},
    {"linear (multicore-selected)", true, renderRowSelected},
    {"last pixel", false, renderRow<lastPixelTexel<quint32>>},
    {"last pixel (multicore)", true, renderRow<lastPixelTexel<quint32>>},
    {"last pixel float", false, renderRow<lastPixelTexel<float>>},
    {"last pixel f32 (multicore)", true, renderRow<lastPixelTexel<float>>},
    {"last pixel f64 (multicore)", true, renderRow<lastPixelTexel<double>>},
};

} // namespace

rotozoom::rotozoom(printHook *target, quint32 mode, std::unique_ptr<QByteArray> selection)
    : testBase(target),
      coreSelection(std::move(selection)),
      renderMode(mode)
{
}

bool rotozoom::setup(int newWidth, int newHeight)
{
    if (!testBase::setup(newWidth, newHeight))
        return false;
    if (!texture.load(QStringLiteral(":/data/pic4_512_512.png"), 1)) {
        release();
        return false;
    }
    fillBlack();
    zoom = zoomLimit();
    zoomStep = -10.24;
    angle = 0.0;
    angleStep = 0.02;
    return true;
}

void rotozoom::release()
{
    texture.free();
    testBase::release();
}

QString rotozoom::getName() const
{
    const char *modeName = renderMode < std::size(modes) ? modes[renderMode].name : "error";
    QString name = QStringLiteral("rotozoom '%1'").arg(QLatin1String(modeName));
    if (!coreSelection)
        return name;
    QString marks;
    for (const char selected : *coreSelection)
        marks += QLatin1Char(selected != 0 ? 'X' : '_');
    return QStringLiteral("%1 affinity [%2]").arg(name, marks);
}

void rotozoom::run()
{
    const view frame = nextView();
    if (renderMode >= std::size(modes))
        return;
    const modeEntry &mode = modes[renderMode];
    const int rows = height;
#pragma omp parallel for schedule(static) if (mode.allThreads)
    for (int y = 0; y < rows; ++y)
        mode.render(row(y), width, y, frame.texture, frame);
}

/// One picture width across the frame.
double rotozoom::zoomLimit() const
{
    return texture.getWidth() * 4096.0 / width;
}

/// Moves the animation on by one frame. The zoom overshoots its bounds by a step before it turns.
rotozoom::view rotozoom::nextView()
{
    zoom += zoomStep;
    angle += angleStep;
    if (zoom > zoomLimit() || zoom < 0)
        zoomStep = -zoomStep;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double hw = -width * 0.5;
    const double hh = -height * 0.5;
    const double u = (hh * c - hw * s) * zoom * 0.000244140625 + texture.getWidth() * 0.5;
    const double v = (hh * s + hw * c) * zoom * 0.000244140625 + texture.getHeight() * 0.5;
    return {{texture.data(), texture.getWidth()},
            {truncateToWord(u * 4096.0), truncateToWord(v * 4096.0)},
            {truncateToWord(-s * zoom), truncateToWord(c * zoom)},
            {truncateToWord(c * zoom), truncateToWord(s * zoom)},
            coreSelection.get()};
}
