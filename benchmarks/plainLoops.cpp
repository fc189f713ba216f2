// SPDX-License-Identifier: GPL-3.0-or-later
#include "plainLoops.h"

#include "tests/matrix.h"
#include "tests/tiledPicture.h"

#include <QByteArray>
#include <QFile>
#include <QList>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

namespace
{

using plainLoops::height;
using plainLoops::width;

constexpr std::uint32_t black = 0xFF000000U;
constexpr double frameWork = width * height * 1e-6;

using pixels = std::vector<std::uint32_t>;

pixels blackFrame()
{
    return pixels(static_cast<std::size_t>(width) * height, black);
}

/// Null if it cannot be loaded.
std::shared_ptr<tiledPicture> loadPicture(const QString &resource, quint32 tiles)
{
    auto picture = std::make_shared<tiledPicture>();
    return picture->load(resource, tiles) ? picture : nullptr;
}

struct flyingRectangle {
    float x;
    float y;
    float vx;
    float vy;
    std::uint32_t colour;
};

std::vector<flyingRectangle> scatterRectangles()
{
    std::vector<flyingRectangle> rectangles(2000);
    for (flyingRectangle &r : rectangles) {
        r.x = float(std::rand() % width);
        r.y = float(std::rand() % height);
        r.vx = float(std::rand() % 1000 - 500) * 0.005F * (float(width) * 0.002F);
        r.vy = float(std::rand() % 1000 - 500) * 0.005F * (float(height) * 0.002F);
        r.colour = 0xFFFF0000U | static_cast<std::uint32_t>(std::rand() & 255) << 8;
    }
    return rectangles;
}

void moveRectangles(std::vector<flyingRectangle> &rectangles, pixels &frame)
{
    for (flyingRectangle &r : rectangles) {
        r.x += r.vx;
        r.y += r.vy;
        if (!(r.x > 0) || r.x >= float(width))
            r.vx = -r.vx;
        if (!(r.y > 0) || r.y >= float(width))
            r.vy = -r.vy;
        const int left = static_cast<int>(r.x);
        const int top = static_cast<int>(r.y);
        for (int y = std::max(top, 0); y < std::min(top + height / 240, height); ++y) {
            for (int x = std::max(left, 0); x < std::min(left + width / 320, width); ++x)
                frame[static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x)] = r.colour;
        }
    }
}

/// The source and the buffers of a round of rle and zlib.
struct codecData {
    std::shared_ptr<tiledPicture> source;
    workBuffer<quint32> packed;
    workBuffer<quint32> unpacked;

    /// The pages of the unpacked buffer are left to be touched by the run.
    void renewBuffers()
    {
        const std::size_t length = std::size_t{2} * source->getCount();
        if (!packed.allocate(length) || !unpacked.allocate(length))
            std::abort();
        std::fill_n(packed.data(), length, black);
    }
};

std::shared_ptr<codecData> loadCodecData(quint32 tiles)
{
    auto data = std::make_shared<codecData>();
    data->source = loadPicture(QStringLiteral(":/data/pic2_512_512.png"), tiles);
    return data->source ? data : nullptr;
}

std::vector<point4> loadCloud()
{
    std::vector<point4> cloud;
    QFile file(QStringLiteral(":/data/wPoints.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return cloud;
    while (!file.atEnd()) {
        const QList<QByteArray> numbers = file.readLine().trimmed().split(' ');
        if (numbers.size() == 3) {
            cloud.push_back({numbers[0].toFloat() * 0.01F, numbers[1].toFloat() * 0.01F,
                             (numbers[2].toFloat() - 150.0F) * 0.01F, 0.0F});
        }
    }
    return cloud;
}

void copyMatrix(point4 (&to)[4], const matrix4 &from)
{
    for (std::size_t k = 0; k < 4; ++k)
        to[k] = {from[k].x, from[k].y, from[k].z, from[k].w};
}

struct vertexData {
    std::vector<point4> points;
    /// Untouched before the first run, like that of the workload.
    workBuffer<point4> transformed;
    pixels frame = blackFrame();
    pointTransform transform = {};
    float angleA = 0;
    float angleB = 0;

    void turn()
    {
        angleA += 0.01F;
        angleB += 0.02F;
        copyMatrix(transform.rotation, product(rotationX(-angleA), rotationY(angleB)));
        transform.translation = {0, 0, 0.01F, 0};
        std::fill(frame.begin(), frame.end(), black);
    }
};

} // namespace

plainLoop plainLoops::rotozoom(texelRule rule, bool multicore)
{
    const auto texture = loadPicture(QStringLiteral(":/data/pic4_512_512.png"), 1);
    if (!texture)
        return {};
    const rotozoomMotion start = {texture->getWidth() * 4096.0 / width, -10.24, 0.0, 0.02};
    return {frameWork, {}, [=, frame = blackFrame(), motion = start]() mutable {
                standaloneRotozoom(frame.data(), width, height, texture->data(),
                                   texture->getWidth(), motion, rule, multicore);
            }};
}

plainLoop plainLoops::mandel(keeping kept, bool multicore)
{
    static const std::int32_t palette[256][4] = {};
    return {frameWork, {}, [=, frame = blackFrame()]() mutable {
                standaloneMandel(frame.data(), width, height, palette, kept, multicore);
            }};
}

plainLoop plainLoops::lines()
{
    constexpr int count = 12000;
    return {count * 0.001, {}, [frame = blackFrame()]() mutable {
                standaloneLines(frame.data(), width, height, count);
            }};
}

plainLoop plainLoops::motionBlur()
{
    const auto frame = std::make_shared<pixels>(blackFrame());
    return {
        frameWork,
        [frame, rectangles = scatterRectangles()]() mutable { moveRectangles(rectangles, *frame); },
        [frame, phase = blurPhase{0, 1}]() mutable {
            standaloneMotionBlur(frame->data(), width, height, phase);
        }};
}

plainLoop plainLoops::shellSort(keeping kept)
{
    const auto source = loadPicture(QStringLiteral(":/data/pic4_512_512.png"), 1);
    if (!source)
        return {};
    const auto words = std::make_shared<pixels>(source->getCount());
    return {source->getCount() * 1e-6,
            [=] { std::copy_n(source->data(), source->getCount(), words->data()); },
            [=] { standaloneShellSort(words->data(), source->getCount(), kept); }};
}

plainLoop plainLoops::rle()
{
    const auto data = loadCodecData(6);
    if (!data)
        return {};
    return {data->source->getCount() * 2e-6, [=] { data->renewBuffers(); },
            [=] {
                standaloneRle(data->unpacked.data(), data->packed.data(), data->source->data(),
                              data->source->getCount(), 0);
            }};
}

plainLoop plainLoops::zlib(keeping kept)
{
    const auto data = loadCodecData(4);
    if (!data)
        return {};
    const auto compress = [=] {
        data->renewBuffers();
        const QByteArray plain(reinterpret_cast<const char *>(data->source->data()),
                               static_cast<int>(data->source->getCount() * sizeof(quint32)));
        const QByteArray stream = qCompress(plain, 1);
        std::copy(stream.begin(), stream.end(), reinterpret_cast<char *>(data->packed.data()));
    };
    return {data->source->getCount() * 1e-6, compress, [=] {
                standaloneZlib(data->unpacked.data(), data->packed.data(),
                               static_cast<int>(2 * data->source->getCount()), kept);
            }};
}

plainLoop plainLoops::colors(keeping kept, bool multicore)
{
    return {frameWork, {}, [=, frame = blackFrame(), time = 0.0F]() mutable {
                standaloneColors(frame.data(), width, height, time, kept, multicore);
            }};
}

plainLoop plainLoops::crc32(bool multicore)
{
    return {frameWork, {}, [=, frame = blackFrame()]() mutable {
                standaloneCrc32(frame.data(), width, height, multicore);
            }};
}

plainLoop plainLoops::vertex(bool multicore)
{
    constexpr int copies = 512;
    const auto data = std::make_shared<vertexData>();
    data->points = loadCloud();
    const std::size_t count = data->points.size() * copies;
    if (!data->transformed.allocate(count))
        return {};
    const float top = 0.57735026F * 0.1F;
    const float right = float(width) / float(height) * top;
    copyMatrix(data->transform.projection, projection({-right, right, -top, top, 0.1F, 60.0F}));
    return {static_cast<double>(count) * 1e-6, [=] { data->turn(); },
            [=] {
                standaloneVertex(data->transformed.data(), data->points.data(),
                                 static_cast<int>(data->points.size()), copies, data->transform,
                                 multicore);
            }};
}
