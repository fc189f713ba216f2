// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/tiledPicture.h"
#include "tests/workloadFacts.h"

/// Sorts the pixels of a picture from dark to bright with Shell's sort, the same unsorted picture
/// in each round.
class shellsort : public testBase
{
public:
    bool setup(int width, int height) override;
    void release() override;
    QString getName() const override { return QStringLiteral("shellsort"); }
    void preRun() override;
    void run() override;
    void postRun() override;
    float getWork() const override;
    QString getUnit() const override { return QStringLiteral("MWords"); }
    bool isMulticore() const override { return false; }

    /// Sorts @p count pixels by the sum of their red, green and blue. Gaps halve, as Shell had them
    /// (D. L. Shell, "A High-Speed Sorting Procedure", 1959).
    static void sort(quint32 *words, quint32 count);

private:
    tiledPicture source;
    workBuffer<quint32> work;
};

namespace shellsortFacts
{

inline constexpr auto loops = std::to_array<machineLoop>({
    // Both keys of a comparison: three bytes each, two additions each.
    {"shellsort::sort", {{{"movzbl", 6, 6}, {"add", 4, 4}}}},
});
inline constexpr auto reads = std::to_array<machineReads>({
    // The word to compare with; the moved one stays in a register.
    {"shellsort::sort", 1},
});
inline constexpr machineCode code = {"shellsort", loops, reads};

inline constexpr workloadFacts facts = {
    "MWords",
    "Sorts the pixels of a picture by brightness with Shell's sort. Integer arithmetic, loads "
    "from the caches and branches that are hard to predict.",
    {.instructions = 9036, .loads = 716, .branchMisses = 7.1},
    loopSchedule::none,
    code,
};

} // namespace shellsortFacts
