// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/textTable.h"

#include "data/visibleText.h"

#include <algorithm>

QString textTable(const std::vector<QStringList> &rows, const std::vector<int> &leftColumns)
{
    std::vector<int> widths;
    for (const QStringList &row : rows) {
        widths.resize(std::max(widths.size(), static_cast<std::size_t>(row.size())));
        for (int i = 0; i < row.size(); ++i) {
            int &width = widths.at(static_cast<std::size_t>(i));
            width = std::max(width, columnsOf(row.at(i)));
        }
    }
    QString text;
    for (const QStringList &row : rows) {
        QString line;
        for (int i = 0; i < row.size(); ++i) {
            const QString padding(widths.at(static_cast<std::size_t>(i)) - columnsOf(row.at(i)),
                                  QLatin1Char(' '));
            const bool isLeft =
                i == 0 || std::find(leftColumns.begin(), leftColumns.end(), i) != leftColumns.end();
            line += (i == 0 ? QString() : QStringLiteral("  "))
                    + (isLeft ? row.at(i) + padding : padding + row.at(i));
        }
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        text += line + QLatin1Char('\n');
    }
    return text;
}
