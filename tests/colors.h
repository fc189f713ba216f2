// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

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
