// SPDX-License-Identifier: GPL-3.0-or-later
#include "plainLoops.h"

#include "tests/tiledPicture.h"

#include <QByteArray>

#include <algorithm>
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

/// The source and the buffers of a round of zlib.
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

} // namespace

plainLoop plainLoops::mandel(keeping kept)
{
    static const std::int32_t palette[256][4] = {};
    return {frameWork, {}, [=, frame = blackFrame()]() mutable {
                standaloneMandel(frame.data(), width, height, palette, kept);
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

plainLoop plainLoops::zlib(keeping kept)
{
    const auto data = std::make_shared<codecData>();
    data->source = loadPicture(QStringLiteral(":/data/pic2_512_512.png"), 4);
    if (!data->source)
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

plainLoop plainLoops::colors(keeping kept)
{
    return {frameWork, {}, [=, frame = blackFrame(), time = 0.0F]() mutable {
                standaloneColors(frame.data(), width, height, time, kept);
            }};
}
