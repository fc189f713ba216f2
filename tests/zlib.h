// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/codecTest.h"

#include <QByteArray>

/// Decompresses a large tiled picture, which is compressed afresh before each timed run.
class zlib : public codecTest
{
public:
    zlib();

    QString getName() const override { return QStringLiteral("zlib uncompress"); }
    void preRun() override;
    void run() override;
    float getWork() const override { return megawords(); }

    /// Decompresses @p packedBytes, a big-endian length of four bytes and a zlib stream (RFC 1950),
    /// and copies the result to @p out. Returns the number of bytes copied, 0 if it cannot be
    /// decompressed.
    static int unpack(char *out, const QByteArray &packedBytes);
};
