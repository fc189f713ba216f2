// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

#include <array>

/// The Mandelbrot set by escape time, up to 64 iterations in single precision, in a palette that
/// turns by one entry before each run: the picture flows, the work stays the same.
class mandel : public testBase
{
public:
    /// @p mode 1 spreads the rows over all OpenMP threads, 0 uses the calling thread alone.
    explicit mandel(quint32 mode);

    bool setup(int width, int height) override;
    QString getName() const override;
    void preRun() override;
    void run() override;
    void postRun() override {}
    float getWork() const override { return megapixels(); }
    QString getUnit() const override { return QStringLiteral("MPixel"); }
    bool isMulticore() const override { return multicore == 1; }

    struct colour {
        qint32 alpha;
        qint32 red;
        qint32 green;
        qint32 blue;
    };
    /// Entry n colours the points that escape after n iterations.
    using colourTable = std::array<colour, 256>;

private:
    void buildPalette();

    quint32 multicore;
    colourTable palette = {};
    /// Counts the runs for a zoom that this test does not perform.
    qint32 frameCounter = 0;
    qint32 frameStep = 0;
};
