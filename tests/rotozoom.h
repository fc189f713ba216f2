// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/texel.h"
#include "tests/tiledPicture.h"
#include "tests/workloadFacts.h"

#include <QByteArray>

#include <memory>

/// A picture, endlessly repeated, that turns and zooms about the centre of the frame.
class rotozoom : public testBase
{
public:
    /// @p mode, 0 to 13, chooses how a texel is fetched and whether the rows are spread over all
    /// OpenMP threads. @p selection, which may be null, has a byte for each thread number; a thread
    /// whose byte is zero fills its rows with red in mode 8.
    rotozoom(printHook *target, quint32 mode, std::unique_ptr<QByteArray> selection = nullptr);

    bool setup(int width, int height) override;
    void release() override;
    QString getName() const override;
    void preRun() override {}
    void run() override;
    void postRun() override {}
    float getWork() const override { return megapixels(); }
    QString getUnit() const override { return QStringLiteral("MPixel"); }
    /// True for the two multi-core modes of the suite only. The others answer false, as they always
    /// have.
    bool isMulticore() const override { return renderMode == 4 || renderMode == 10; }

    /// What all rows of one frame share.
    struct view {
        textureView texture;
        texturePoint start;
        texturePoint alongRow;
        texturePoint perRow;
        const QByteArray *selection;
    };

private:
    double zoomLimit() const;
    view nextView();

    tiledPicture texture;
    std::unique_ptr<QByteArray> coreSelection;
    /// Texture step per pixel, in 1/4096 texel.
    double zoom = 0;
    double zoomStep = 0;
    /// In radians.
    double angle = 0;
    double angleStep = 0;
    quint32 renderMode;
};

namespace rotozoomFacts
{

inline constexpr auto loops = std::to_array<machineLoop>({
    {"renderRow<nearestTexel>", {{{"imul", 1, -1}, {mnemonics::conversions}}}},
    {"renderRowWide", {{{"imul", 1, -1}, {mnemonics::conversions}}}},
    {"renderRowDithered", {{{"imul", 1, -1}, {mnemonics::conversions}}}},
    {"renderRow<linearTexel<unsigned int>",
     {{{"imul", 16, 20}, {mnemonics::conversions}, {mnemonics::singles}, {mnemonics::doubles}}}},
    {"renderRow<linearTexel<float>",
     {{{"v?mulss", 19, 19}, {"v?addss", 9, 9}, {mnemonics::doubles}}}},
    {"renderRow<linearTexel<double>",
     {{{"v?mulsd", 19, 19}, {"v?addsd", 9, 9}, {mnemonics::singles}}}},
    {"renderRow<lastPixelTexel<unsigned int>",
     {{{"imul", 1, -1}, {mnemonics::conversions}, {mnemonics::singles}, {mnemonics::doubles}}}},
    {"renderRow<lastPixelTexel<float>",
     {{{"v?mulss", 6, 6}, {"v?addss", 3, 3}, {mnemonics::doubles}}}},
    {"renderRow<lastPixelTexel<double>",
     {{{"v?mulsd", 6, 6}, {"v?addsd", 3, 3}, {mnemonics::singles}}}},
});
inline constexpr auto reads = std::to_array<machineReads>({
    {"renderRow<nearestTexel>", 1},
    {"renderRowDithered", 1},
    // The texel and the pixel before.
    {"renderRow<lastPixelTexel<unsigned int>", 2},
});
inline constexpr machineCode code = {"rotozoom", loops, reads};

inline constexpr workloadFacts nearest = {
    "MPixel",
    "Turns and zooms a picture, one texel per pixel. A multiplication and a load: integer "
    "throughput, and how fast a frame can be written.",
    {},
    loopSchedule::fixed,
    code,
};

inline constexpr workloadFacts dithered = {
    "MPixel",
    "Turns and zooms a picture, with texels chosen by a dither pattern. A few integer "
    "instructions and a load per pixel: how many a core completes in a clock.",
    {.instructions = 22, .loads = 3, .chainCycles = 1, .bytes = 8},
    loopSchedule::fixed,
    code,
};

inline constexpr workloadFacts linear = {
    "MPixel",
    "Turns and zooms a picture with bilinear filtering in integers. Many independent products "
    "and shifts per pixel: the throughput of integer arithmetic.",
    {.instructions = 103, .loads = 9, .chainCycles = 1, .bytes = 8},
    loopSchedule::fixed,
    code,
};

inline constexpr workloadFacts lastPixel = {
    "MPixel",
    "Turns and zooms a picture and mixes each pixel with the last frame. Integer throughput, "
    "and with many cores the bandwidth of the memory.",
    {.instructions = 45, .loads = 2, .chainCycles = 1, .bytes = 8},
    loopSchedule::fixed,
    code,
};

} // namespace rotozoomFacts
