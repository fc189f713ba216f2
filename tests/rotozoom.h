// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/texel.h"
#include "tests/tiledPicture.h"

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
