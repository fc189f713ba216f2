// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/matrix.h"
#include "tests/workloadFacts.h"

/// Turns, scales and projects 512 copies of a cloud of points, and draws the first copy as grey
/// dots. The cloud turns a little before each run.
class vertex : public testBase
{
public:
    /// @p mode 1 spreads the copies over all OpenMP threads, 0 uses the calling thread alone.
    explicit vertex(quint32 mode);

    bool setup(int width, int height) override;
    void release() override;
    QString getName() const override;
    void preRun() override;
    void run() override;
    void postRun() override;
    float getWork() const override;
    QString getUnit() const override { return QStringLiteral("MVertices"); }
    bool isMulticore() const override { return multicore == 1; }

    int getPointCount() const { return pointCount; }
    int getCopies() const { return copies; }
    /// The points of copy 0, then those of copy 1, and so on, or null when no set-up is active.
    const vector4 *getTransformed() const { return transformed.data(); }

    /// What happens to every point of a run.
    struct transform {
        matrix4 rotation;
        vector4 translation;
        matrix4 projection;
    };

private:
    bool loadPoints();

    quint32 multicore;
    qint32 copies = 512;
    qint32 pointCount = 0;
    workBuffer<vector4> points;
    workBuffer<vector4> transformed;
    transform current = {};
    /// In degrees; kept beside the extents, which are made from its tangent, and read by nothing.
    float fieldOfView = 0;
    frustum extents = {};
    float unusedTop = 0;
    float angleA = 0;
    float angleB = 0;
    float angleC = 0;
};

namespace vertexFacts
{

inline constexpr auto loops = std::to_array<machineLoop>({
    // 16 products each for the rotation and the projection, four for the scale.
    {"omp", {{{"v?mulss", 36, 36}, {"v?addss", 28, 28}, {mnemonics::doubles}}}},
});
inline constexpr machineCode code = {"vertex", loops};

inline constexpr workloadFacts facts = {
    "MVertices",
    "Turns, scales and projects a cloud of points by matrices. Independent single-precision "
    "sums and products, and with many cores the bandwidth of the memory.",
    {.instructions = 100, .loads = 40, .bytes = 32},
    loopSchedule::fixed,
    code,
};

} // namespace vertexFacts
