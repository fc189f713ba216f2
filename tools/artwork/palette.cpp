// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/palette.h"

#include "tools/artwork/fixedPoint.h"

#include <QVector>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <map>
#include <set>
#include <vector>

namespace
{

constexpr std::size_t paletteSize = 256;
constexpr qint64 ditherStrength = 5;

using channels = std::array<qint64, 3>;

struct countedColour {
    channels value;
    qint64 count;
};

using colourBox = std::vector<countedColour>;

channels channelsOf(QRgb pixel)
{
    return {qRed(pixel), qGreen(pixel), qBlue(pixel)};
}

qint64 sumOf(const channels &c)
{
    return c[0] + c[1] + c[2];
}

colourBox countColours(const QImage &picture)
{
    std::map<QRgb, qint64> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++counts[picture.pixel(x, y)];
    }
    colourBox colours;
    for (const auto &[pixel, count] : counts)
        colours.push_back({channelsOf(pixel), count});
    return colours;
}

qint64 population(const colourBox &box)
{
    qint64 sum = 0;
    for (const countedColour &c : box)
        sum += c.count;
    return sum;
}

/// Black for an empty box.
channels mean(const colourBox &box)
{
    channels result = {};
    const qint64 count = population(box);
    if (count == 0)
        return result;
    for (std::size_t k = 0; k < 3; ++k) {
        qint64 sum = 0;
        for (const countedColour &c : box)
            sum += c.value[k] * c.count;
        result[k] = artwork::roundedQuotient(sum, count);
    }
    return result;
}

/// The greatest sum of squared differences from the mean in one channel, and that channel.
std::pair<qint64, std::size_t> widestChannel(const colourBox &box)
{
    const channels centre = mean(box);
    std::pair<qint64, std::size_t> widest = {0, 0};
    for (std::size_t k = 0; k < 3; ++k) {
        qint64 spread = 0;
        for (const countedColour &c : box)
            spread += (c.value[k] - centre[k]) * (c.value[k] - centre[k]) * c.count;
        widest = std::max(widest, {spread, k});
    }
    return widest;
}

/// Moves the colours above the mean of the widest channel from @p box into a new one.
colourBox splitOff(colourBox &box)
{
    const std::size_t k = widestChannel(box).second;
    const qint64 border = mean(box)[k];
    const auto upper = std::stable_partition(
        box.begin(), box.end(), [=](const countedColour &c) { return c.value[k] <= border; });
    colourBox rest(upper, box.end());
    box.erase(upper, box.end());
    if (rest.empty()) { // The mean was rounded up to the greatest value.
        const auto greatest = std::stable_partition(
            box.begin(), box.end(), [=](const countedColour &c) { return c.value[k] < border; });
        rest.assign(greatest, box.end());
        box.erase(greatest, box.end());
    }
    return rest;
}

std::vector<channels> medianCut(const colourBox &colours)
{
    std::vector<colourBox> boxes = {colours};
    std::vector<qint64> spreads = {widestChannel(colours).first};
    while (boxes.size() < paletteSize) {
        const auto widest = std::max_element(spreads.begin(), spreads.end()) - spreads.begin();
        colourBox &box = boxes[static_cast<std::size_t>(widest)];
        colourBox part = splitOff(box);
        spreads[static_cast<std::size_t>(widest)] = widestChannel(box).first;
        spreads.push_back(widestChannel(part).first);
        boxes.push_back(std::move(part));
    }
    std::vector<channels> palette;
    std::transform(boxes.begin(), boxes.end(), std::back_inserter(palette), mean);
    return palette;
}

std::size_t nearest(const std::vector<channels> &palette, const channels &c)
{
    const auto difference = [&c](const channels &entry) {
        qint64 sum = 0;
        for (std::size_t k = 0; k < 3; ++k)
            sum += (entry[k] - c[k]) * (entry[k] - c[k]);
        return sum;
    };
    const auto found =
        std::min_element(palette.begin(), palette.end(), [&](const channels &a, const channels &b) {
            return difference(a) < difference(b);
        });
    return static_cast<std::size_t>(found - palette.begin());
}

/// One step of k-means: moves every entry to the mean of the colours that are nearest to it.
void improve(std::vector<channels> &palette, const colourBox &colours)
{
    std::vector<colourBox> followers(palette.size());
    for (const countedColour &c : colours)
        followers[nearest(palette, c.value)].push_back(c);
    for (std::size_t i = 0; i < palette.size(); ++i) {
        if (!followers[i].empty())
            palette[i] = mean(followers[i]);
    }
}

/// Changes the channels of a colour in turn until their sum has changed by @p by. False, and no
/// change, if a channel would leave its range.
bool shiftSum(channels &entry, qint64 by)
{
    channels shifted = entry;
    std::size_t k = 2; // Blue first: the eye is least sensitive to it.
    for (qint64 left = by; left != 0; k = (k + 2) % 3) {
        shifted[k] += by > 0 ? 1 : -1;
        left -= by > 0 ? 1 : -1;
    }
    if (*std::min_element(shifted.begin(), shifted.end()) < 0
        || *std::max_element(shifted.begin(), shifted.end()) > 255)
        return false;
    entry = shifted;
    return true;
}

void drawSumsApart(std::vector<channels> &palette)
{
    constexpr qint64 reach = 6;
    std::set<qint64> taken;
    for (channels &entry : palette) {
        for (qint64 i = 0; i <= 2 * reach; ++i) {
            const qint64 by = i % 2 == 0 ? i / 2 : -(i + 1) / 2;
            if (taken.count(sumOf(entry) + by) == 0 && shiftSum(entry, by))
                break;
        }
        taken.insert(sumOf(entry));
    }
    std::stable_sort(palette.begin(), palette.end(),
                     [](const channels &a, const channels &b) { return sumOf(a) < sumOf(b); });
}

/// Ordered dithering by a Bayer matrix, which hides the steps of gradients.
qint64 ditherOffset(int x, int y)
{
    constexpr std::array<qint64, 16> pattern = {-7, 1, -5, 3, 5, -3, 7, -1,
                                                -4, 4, -6, 2, 8, 0,  6, -2};
    return pattern[static_cast<std::size_t>(4 * (y % 4) + x % 4)] * ditherStrength / 8;
}

} // namespace

QImage artwork::reducedToPalette(const QImage &picture)
{
    const colourBox colours = countColours(picture);
    std::vector<channels> palette = medianCut(colours);
    constexpr int rounds = 4;
    for (int i = 0; i < rounds; ++i)
        improve(palette, colours);
    drawSumsApart(palette);

    QVector<QRgb> table;
    for (const channels &c : palette)
        table.append(qRgb(static_cast<int>(c[0]), static_cast<int>(c[1]), static_cast<int>(c[2])));
    std::map<channels, uint> indexOf;
    QImage reduced(picture.size(), QImage::Format_Indexed8);
    reduced.setColorTable(table);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            channels c = channelsOf(picture.pixel(x, y));
            for (qint64 &channel : c)
                channel += ditherOffset(x, y);
            const auto [entry, isNew] = indexOf.try_emplace(c);
            if (isNew)
                entry->second = static_cast<uint>(nearest(palette, c));
            reduced.setPixel(x, y, entry->second);
        }
    }
    return reduced;
}
