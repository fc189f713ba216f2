// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/tiledPicture.h"

/// What the workloads share that unpack a packed picture: the tiled source, the two buffers of a
/// round, and the display, which shows the packed words as they are after one round and the
/// unpacked picture after the next.
class codecTest : public testBase
{
public:
    bool setup(int width, int height) override;
    void release() override;
    /// Allocates the buffers of the round, twice as long as the source. The unpacked one is left
    /// untouched, because the page faults of its first use belong to the timed run. Fails the round
    /// without memory.
    void preRun() override;
    void postRun() override;
    QString getUnit() const override { return QStringLiteral("MWords"); }
    bool isMulticore() const override { return false; }

protected:
    /// The source is the picture repeated @p tiles times each way.
    explicit codecTest(quint32 tiles);

    /// The size of the source in millions of words.
    float megawords() const;

    tiledPicture source;
    workBuffer<quint32> packed;
    workBuffer<quint32> unpacked;

private:
    void showWords(const quint32 *words, quint32 alpha);

    quint32 tileCount;
    bool showPacked = false;
};
