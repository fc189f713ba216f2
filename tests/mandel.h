// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/workloadFacts.h"

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

namespace mandelFacts
{

inline constexpr auto loops = std::to_array<machineLoop>({
    // Four products of z and two of c; the division of each iteration.
    {"", {{{"v?mulss", 4, -1}, {"v?divss", 1, 1}, {"v?u?comiss", 1, 1}, {mnemonics::doubles}}}},
});
inline constexpr machineCode code = {"mandel", loops};

inline constexpr workloadFacts facts = {
    "MPixel",
    "Renders the Mandelbrot set by escape time, in single precision. Long chains of dependent "
    "floating-point operations and divisions: the latencies of the floating-point unit.",
    {.instructions = 509,
     .loads = 42.8,
     .chainMultiplications = 20.26,
     .chainAdditions = 40.52,
     .divisions = 20.26,
     .branchMisses = 0.45,
     .bytes = 8},
    loopSchedule::dynamic,
    code,
};

} // namespace mandelFacts
