// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/visibleText.h"

QString visibleText(QString text)
{
    for (QChar &letter : text) {
        if (!letter.isPrint() || letter.category() == QChar::Separator_Line
            || letter.category() == QChar::Separator_Paragraph)
            letter = QLatin1Char('?');
    }
    return text;
}

int columnsOf(const QString &text)
{
    constexpr char16_t firstWide = 0x1100;
    int columns = 0;
    for (const QChar letter : text)
        columns += letter.unicode() >= firstWide ? 2 : 1;
    return columns;
}
