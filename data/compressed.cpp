// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/compressed.h"

#include <QtEndian>

#include <array>

#define ZLIB_CONST // its input is not written to
#include <zlib.h>

namespace
{

constexpr int lengthBytes = 4;

/// Whether @p packed, a zlib stream, is complete and holds at most @p maximumSize bytes. What it
/// holds is thrown away.
bool isBounded(const QByteArray &packed, qint64 maximumSize)
{
    std::array<unsigned char, 16 * 1024>
        window; // not filled in: inflate writes before anyone reads
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        return false;
    stream.next_in = reinterpret_cast<const Bytef *>(packed.constData());
    stream.avail_in = static_cast<uInt>(packed.size());
    int state = Z_OK;
    while (state == Z_OK && static_cast<qint64>(stream.total_out) <= maximumSize) {
        stream.next_out = window.data();
        stream.avail_out = static_cast<uInt>(window.size());
        state = inflate(&stream, Z_NO_FLUSH);
    }
    const bool isIn = static_cast<qint64>(stream.total_out) <= maximumSize;
    inflateEnd(&stream);
    return state == Z_STREAM_END && isIn;
}

} // namespace

QByteArray uncompressed(const QByteArray &packed, qint64 maximumSize)
{
    // The length in front may be a lie in both directions: qUncompress would ask for that much
    // memory at once, or double what it has until all fits.
    if (packed.size() <= lengthBytes || qFromBigEndian<quint32>(packed.constData()) > maximumSize
        || !isBounded(
            QByteArray::fromRawData(packed.constData() + lengthBytes, packed.size() - lengthBytes),
            maximumSize))
        return {};
    return qUncompress(packed);
}
