// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/workloadFacts.h"

/// The light of four round glows, red, green, blue and white, that circle about the centre of the
/// frame: four square roots per pixel, in single precision throughout.
class colors : public testBase
{
public:
    /// @p mode 1 spreads the rows over all OpenMP threads, 0 uses the calling thread alone.
    explicit colors(quint32 mode);

    bool setup(int width, int height) override;
    QString getName() const override;
    void preRun() override {}
    void run() override;
    void postRun() override {}
    float getWork() const override { return megapixels(); }
    QString getUnit() const override { return QStringLiteral("MPixel"); }
    bool isMulticore() const override { return multicore == 1; }

private:
    quint32 multicore;
    float time = 0;
};

namespace colorsFacts
{

inline constexpr auto loops = std::to_array<machineLoop>({
    // Per glow: both differences and their squares, a root, the scale, the light. With the
    // vertical parts taken out of the loop there would be half as many.
    {"omp",
     {{{"v?sqrtss", 4, 4},
       {"v?subss", 12, 12},
       {"v?mulss", 12, 12},
       {"call.*"},
       {mnemonics::doubles}}}},
});
inline constexpr auto reads = std::to_array<machineReads>({
    // Ten values that do not change and the row: one of them may not find a register.
    {"omp", 1},
});
inline constexpr machineCode code = {"colors", loops, reads};

inline constexpr workloadFacts facts = {
    "MPixel",
    "Lights every pixel by four glows, with a square root each. Independent floating-point "
    "arithmetic: the throughput of roots and products.",
    {.instructions = 87.1, .loads = 3, .roots = 4, .branchMisses = 0.006, .bytes = 8},
    loopSchedule::fixed,
    code,
};

} // namespace colorsFacts
