// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QtEndian>

#include <zlib.h>

/// @p stream with @p length in front, as qCompress packs.
inline QByteArray withLength(quint32 length, const QByteArray &stream)
{
    QByteArray packed(4, Qt::Uninitialized);
    qToBigEndian(length, packed.data());
    return packed + stream;
}

/// A zlib stream of @p size times the letter a, made without ever holding them.
inline QByteArray longStream(qint64 size)
{
    QByteArray piece(64 * 1024, 'a');
    QByteArray packed;
    QByteArray output(64 * 1024, Qt::Uninitialized);
    z_stream stream{};
    deflateInit(&stream, Z_BEST_COMPRESSION);
    for (int state = Z_OK; state != Z_STREAM_END;) {
        if (stream.avail_in == 0 && size > 0) {
            stream.next_in = reinterpret_cast<Bytef *>(piece.data());
            stream.avail_in = static_cast<uInt>(qMin<qint64>(size, piece.size()));
            size -= stream.avail_in;
        }
        stream.next_out = reinterpret_cast<Bytef *>(output.data());
        stream.avail_out = static_cast<uInt>(output.size());
        state = deflate(&stream, size > 0 ? Z_NO_FLUSH : Z_FINISH);
        packed.append(output.constData(), output.size() - static_cast<int>(stream.avail_out));
    }
    deflateEnd(&stream);
    return packed;
}
