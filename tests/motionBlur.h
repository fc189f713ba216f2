// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/workloadFacts.h"

#include <QVector>

/// 2000 small rectangles fly over the frame, and a five-tap filter smears it in place: each pixel
/// takes in its left and upper neighbours as this pass has left them, which draws the trails.
class motionBlur : public testBase
{
public:
    /// @p mode chooses the arithmetic of the filter: 0 integer, 1 single, 2 double precision. The
    /// frames are the same.
    explicit motionBlur(quint32 mode);

    bool setup(int width, int height) override;
    QString getName() const override;
    void preRun() override;
    void run() override;
    void postRun() override {}
    float getWork() const override { return megapixels(); }
    QString getUnit() const override { return QStringLiteral("MPixel"); }
    bool isMulticore() const override { return false; }

    /// Position in pixels, velocity in pixels per run.
    struct rectangle {
        float x;
        float y;
        float vx;
        float vy;
        quint32 colour;
    };

private:
    void scatter();
    void turnPhase();

    quint32 arithmetic;
    QVector<rectangle> rectangles;
    /// The weight of the left neighbour, 0 to 128; the right one has the rest.
    qint32 phase = 0;
    qint32 phaseStep = 1;
};

namespace motionBlurFacts
{

inline constexpr auto loops = std::to_array<machineLoop>({
    {"smear<unsigned int>",
     {{{"imul", 6, 6}, {mnemonics::conversions}, {mnemonics::singles}, {mnemonics::doubles}}}},
    {"smear<float>", {{{"v?mulss", 18, 18}, {"v?addss", 12, 12}, {mnemonics::doubles}}}},
    {"smear<double>", {{{"v?mulsd", 18, 18}, {"v?addsd", 12, 12}, {mnemonics::singles}}}},
});
inline constexpr machineCode code = {"motionBlur", loops};

inline constexpr workloadFacts facts = {
    "MPixel",
    "Smears the trails of flying rectangles with a filter of five taps, in place. Each pixel "
    "waits for the one before it: the latency of integer products and of memory just written.",
    {.instructions = 86.9, .loads = 5, .chainCycles = 21, .bytes = 8},
    loopSchedule::none,
    code,
};

} // namespace motionBlurFacts
