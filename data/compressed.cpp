// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/compressed.h"

#include <QtEndian>

#include <array>

#define ZLIB_CONST
#include <zlib.h>

namespace
{

constexpr int lengthBytes = 4;

/// Whether the zlib stream in @p size bytes at @p data is complete and holds at most @p maximumSize
/// bytes. What it holds is thrown away.
bool isBounded(const char *data, int size, qint64 maximumSize)
{
    std::array<Bytef, 16 * 1024> window{};
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        return false;
    stream.next_in = reinterpret_cast<const Bytef *>(data);
    stream.avail_in = static_cast<uInt>(size);
    qint64 unpacked = 0;
    int state = Z_OK;
    while (state == Z_OK && unpacked <= maximumSize) {
        stream.next_out = window.data();
        stream.avail_out = static_cast<uInt>(window.size());
        state = inflate(&stream, Z_NO_FLUSH);
        unpacked += static_cast<qint64>(window.size()) - stream.avail_out;
    }
    inflateEnd(&stream);
    return state == Z_STREAM_END && unpacked <= maximumSize;
}

} // namespace

std::optional<QByteArray> uncompressed(const QByteArray &packed, qint64 maximumSize)
{
    // The length in front may lie in both directions: qUncompress asks for that much memory at
    // once, and doubles what it has until all fits.
    if (packed.size() <= lengthBytes || qFromBigEndian<quint32>(packed.constData()) > maximumSize
        || !isBounded(packed.constData() + lengthBytes, packed.size() - lengthBytes, maximumSize))
        return std::nullopt;
    return qUncompress(packed);
}
