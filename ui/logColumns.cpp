// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/logColumns.h"

#include <QFontMetricsF>

QString logColumns::longestLine()
{
    constexpr int nameFieldWidth = 36;
    const QString figure = QStringLiteral("0.123456");
    return QStringLiteral("Test %1 Result: %2/s MVertices (avg %2ms)")
        .arg(QString(nameFieldWidth, QLatin1Char('n')), figure);
}

QFont logColumns::fitted(QFont font, const QString &line, qreal room)
{
    constexpr int narrowest = 75;
    for (int stretch = QFont::Unstretched; stretch >= narrowest; --stretch) {
        font.setStretch(stretch);
        if (QFontMetricsF(font).horizontalAdvance(line) <= room)
            break;
    }
    return font;
}
