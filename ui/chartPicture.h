// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/chartContent.h"

#include <QByteArray>
#include <QImage>
#include <QSize>

/// Pictures of a chart for other programs: with all names of its legend, which a window may have to
/// scroll, and with everything that is said below it.
class chartPicture
{
public:
    /// @p smallest is the size of the window's chart, in pixels; the picture is as high as it
    /// takes.
    /// @p fontSize in points.
    chartPicture(chartContent content, const QSize &smallest, int fontSize);

    /// With @p scale pixels for each of the window's. Null if there is no memory for it.
    QImage image(qreal scale = 1) const;
    /// Empty if there is no memory for it.
    QByteArray png(qreal scale = 1) const;
    QByteArray svg() const;

private:
    chartContent shown;
    QSize smallestSize;
    int points;
};
