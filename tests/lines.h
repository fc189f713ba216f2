// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/workloadFacts.h"

/// Fans of random lines after Bresenham, batch over batch.
class lines : public testBase
{
public:
    bool setup(int width, int height) override;
    QString getName() const override { return QStringLiteral("lines"); }
    void preRun() override {}
    void run() override;
    void postRun() override {}
    float getWork() const override { return static_cast<float>(lineCount) * 0.001F; }
    QString getUnit() const override { return QStringLiteral("KLines"); }
    bool isMulticore() const override { return false; }

    struct point {
        qint32 x;
        qint32 y;
    };
    /// Draws a line into the frame, both ends included; both must lie inside the frame.
    void drawLine(point from, point to, quint32 colour);

private:
    point randomPoint() const;

    /// What a run counts. It draws as many fans of as many lines as the square root goes in whole,
    /// 109 x 109; the difference is part of how the result is defined.
    qint32 lineCount = 12000;
};

namespace linesFacts
{

inline constexpr auto loops = std::to_array<machineLoop>({
    {"drawLine", {{{"cmp", 4, 4}, {mnemonics::singles}, {mnemonics::doubles}}}},
});
inline constexpr machineCode code = {"lines", loops};

inline constexpr workloadFacts facts = {
    "KLines",
    "Draws random lines all over the frame after Bresenham. Scattered writes: how fast memory "
    "answers when every line of the cache is new.",
    {.instructions = 23300, .loads = 1434, .branchMisses = 166, .bytes = 98200},
    loopSchedule::none,
    code,
};

} // namespace linesFacts
