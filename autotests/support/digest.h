// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

#include <QByteArray>
#include <QCryptographicHash>

/// The SHA-1 of a frame's pixels, low byte first whatever the machine's byte order, in hexadecimal.
inline QByteArray digestOf(const quint32 *pixels, int count)
{
    QByteArray bytes;
    bytes.reserve(count * 4);
    for (int i = 0; i < count; ++i) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes.append(static_cast<char>(pixels[i] >> shift & 0xFFU));
    }
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex();
}

inline QByteArray digestOf(const testBase &test)
{
    return digestOf(test.getBuffer(), test.getWidth() * test.getHeight());
}
