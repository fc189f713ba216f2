// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/canvas.h"

#include "tools/artwork/fixedPoint.h"

#include <algorithm>
#include <cstddef>
#include <limits>

using namespace artwork;

namespace
{

constexpr qint32 samplesPerPixel = 4;
constexpr qint32 step = pixel / samplesPerPixel;

qint32 channelMean(qint32 from, qint32 to, qint64 share)
{
    return static_cast<qint32>(roundedQuotient(from * (256 - share) + to * share, 256));
}

/// The index of the first sample whose centre lies to the right of, or below, @p position.
qint64 firstSampleAfter(qint64 position)
{
    return floorQuotient(position - step / 2, step) + 1;
}

qint32 wrapped(qint64 index, qint32 count)
{
    return static_cast<qint32>((index % count + count) % count);
}

std::pair<qint32, qint32> verticalRange(const shape &outline)
{
    qint32 top = std::numeric_limits<qint32>::max();
    qint32 bottom = std::numeric_limits<qint32>::min();
    for (const contour &line : outline) {
        for (const point &corner : line) {
            top = std::min(top, corner.y);
            bottom = std::max(bottom, corner.y);
        }
    }
    return {top, bottom};
}

void collectCrossings(const shape &outline, qint64 y, std::vector<qint64> &crossings)
{
    crossings.clear();
    for (const contour &line : outline) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            point from = line[i];
            point to = line[i + 1 == line.size() ? 0 : i + 1];
            if ((from.y <= y) == (to.y <= y))
                continue;
            if (from.y > to.y)
                std::swap(from, to);
            crossings.push_back(
                from.x + floorQuotient((y - from.y) * (qint64(to.x) - from.x), to.y - from.y));
        }
    }
    std::sort(crossings.begin(), crossings.end());
}

} // namespace

colour artwork::mix(const colour &from, const colour &to, qint64 share)
{
    const qint64 s = std::clamp<qint64>(share, 0, 256);
    return {channelMean(from.red, to.red, s), channelMean(from.green, to.green, s),
            channelMean(from.blue, to.blue, s)};
}

colour artwork::colourAt(const gradient &stops, qint64 position)
{
    if (position <= stops.front().first)
        return stops.front().second;
    for (std::size_t i = 1; i < stops.size(); ++i) {
        const auto &[start, before] = stops[i - 1];
        const auto &[end, after] = stops[i];
        if (position < end)
            return mix(before, after, (position - start) * 256 / (end - start));
    }
    return stops.back().second;
}

paint artwork::flat(const colour &tint)
{
    return [tint](point, colour) { return tint; };
}

paint artwork::radial(point centre, const gradient &stops)
{
    return [=](point p, colour) { return colourAt(stops, distance(p, centre)); };
}

paint artwork::linear(point from, point to, const gradient &stops)
{
    const qint64 dx = to.x - from.x;
    const qint64 dy = to.y - from.y;
    return [=](point p, colour) {
        const qint64 along = (p.x - from.x) * dx + (p.y - from.y) * dy;
        return colourAt(stops, floorQuotient(along * 256, dx * dx + dy * dy));
    };
}

paint artwork::translucent(const paint &over, qint64 opacity)
{
    return [=](point p, colour below) { return mix(below, over(p, below), opacity); };
}

paint artwork::glow(point centre, qint64 radius, const colour &tint, qint64 opacity)
{
    return [=](point p, colour below) {
        const qint64 nearness = std::max<qint64>(0, radius - distance(p, centre));
        return mix(below, tint, opacity * nearness * nearness / (radius * radius));
    };
}

canvas::canvas(qint32 newSide)
    : side(newSide),
      samples(static_cast<std::size_t>(newSide) * static_cast<std::size_t>(newSide)
              * samplesPerPixel * samplesPerPixel)
{
}

void canvas::fill(const shape &outline, const paint &how)
{
    const auto [top, bottom] = verticalRange(outline);
    std::vector<qint64> crossings;
    for (qint64 y = firstSampleAfter(top); y < firstSampleAfter(bottom); ++y) {
        collectCrossings(outline, y * step + step / 2, crossings);
        fillRow(static_cast<qint32>(y), crossings, how);
    }
}

void canvas::fillRow(qint32 sampleY, std::vector<qint64> &crossings, const paint &how)
{
    const qint32 count = side * samplesPerPixel;
    colour *row = samples.data() + std::ptrdiff_t(wrapped(sampleY, count)) * count;
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
        const qint64 end = firstSampleAfter(crossings[i + 1]);
        for (qint64 x = firstSampleAfter(crossings[i]); x < end; ++x) {
            colour &sample = row[wrapped(x, count)];
            sample =
                how({static_cast<qint32>(x) * step + step / 2, sampleY * step + step / 2}, sample);
        }
    }
}

void canvas::fillAll(const paint &how)
{
    fill(rectangle({0, 0}, {side * pixel, side * pixel}), how);
}

void canvas::stroke(const shape &outline, qint32 width, const paint &how)
{
    for (const contour &line : outline) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            const point from = line[i];
            const point to = line[i + 1 == line.size() ? 0 : i + 1];
            fill(bar(from, to, width), how);
            fill(circle(from, width / 2), how);
        }
    }
}

QImage canvas::toImage() const
{
    QImage image(side, side, QImage::Format_RGB888);
    for (qint32 y = 0; y < side; ++y) {
        for (qint32 x = 0; x < side; ++x) {
            colour sum;
            for (qint32 k = 0; k < samplesPerPixel * samplesPerPixel; ++k) {
                const qint32 sampleX = x * samplesPerPixel + k % samplesPerPixel;
                const qint32 sampleY = y * samplesPerPixel + k / samplesPerPixel;
                const qint32 index = sampleY * side * samplesPerPixel + sampleX;
                const colour &sample = samples[static_cast<std::size_t>(index)];
                sum = {sum.red + sample.red, sum.green + sample.green, sum.blue + sample.blue};
            }
            const auto mean = [](qint32 total) {
                constexpr qint32 count = samplesPerPixel * samplesPerPixel;
                return (total + count / 2) / count;
            };
            image.setPixel(x, y, qRgb(mean(sum.red), mean(sum.green), mean(sum.blue)));
        }
    }
    return image;
}
