// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/workloadFacts.h"

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

namespace crc32Facts
{

inline constexpr auto loops = std::to_array<machineLoop>({
    // Eight steps per byte, and the byte itself; no carry-less multiplication.
    {"omp", {{{"shr", 8, 8}, {"xor", 9, 9}, {"and", 8, 16}, {"neg", 8, 8}, {"pclmul.*|crc32.*"}}}},
});
inline constexpr machineCode code = {"crc32", loops};

inline constexpr workloadFacts facts = {
    "MWords",
    "Computes a CRC-32 of the frame bit by bit, without tables. One long chain of integer "
    "operations: the clock, and the latency of the simplest instructions.",
    {.instructions = 184, .loads = 4, .chainCycles = 88, .bytes = 4},
    loopSchedule::fixed,
    code,
};

} // namespace crc32Facts
