// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/chartFonts.h"

#include <QFontInfo>
#include <QFontMetricsF>

namespace
{

/// Qt replaces axis labels by dots where they stand too close, and wants this much free height.
constexpr qreal labelPadding = 9;

} // namespace

QFont chartFonts::legend(int pointSize)
{
    const QString family = QStringLiteral("Calibri");
    if (QFont::substitutes(family).isEmpty()) {
        QFont::insertSubstitutions(
            family, {QStringLiteral("Carlito"), QStringLiteral("DejaVu Sans"), QFont().family()});
    }
    return {family, pointSize};
}

QFont chartFonts::title(int pointSize)
{
    QFont font = legend(pointSize + 1);
    font.setBold(true);
    return font;
}

void chartFonts::fitLabels(QtCharts::QValueAxis *axis, const QRectF &plotArea, QFont font)
{
    constexpr int smallestPixelSize = 7;
    const qreal room = plotArea.height() / axis->tickCount() - labelPadding;
    for (int size = QFontInfo(font).pixelSize(); size >= smallestPixelSize; --size) {
        font.setPixelSize(size);
        if (QFontMetricsF(font).height() <= room)
            break;
    }
    if (axis->labelsFont() != font)
        axis->setLabelsFont(font);
}
