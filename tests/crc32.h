// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

/// Bit-serial CRC-32 of the frame itself, in as many chunks as there are threads. Each result
/// overwrites a word at the start of the frame, so the data change a little from run to run.
class crc32 : public testBase
{
public:
    /// @p mode 1 spreads the chunks over all OpenMP threads, 0 uses the calling thread alone. The
    /// number of chunks is the same.
    explicit crc32(quint32 mode);

    bool setup(int width, int height) override;
    QString getName() const override;
    void preRun() override {}
    void run() override;
    void postRun() override {}
    float getWork() const override { return megapixels(); }
    QString getUnit() const override { return QStringLiteral("MWords"); }
    bool isMulticore() const override { return multicore == 1; }

private:
    quint32 multicore;
};
