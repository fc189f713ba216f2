// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/csvTable.h"

#include <algorithm>
#include <cmath>

namespace reference
{

namespace
{

/// What is wrong with the bytes of a table whatever its columns are, or an empty text.
QString faultOf(const QByteArray &content)
{
    if (content.isEmpty())
        return QStringLiteral("is empty or missing");
    if (!content.endsWith('\n'))
        return QStringLiteral("does not end with a line feed");
    const bool isPlain = std::all_of(content.begin(), content.end(), [](char c) {
        return c == '\n' || (c >= ' ' && c <= '~' && c != '"');
    });
    return isPlain ? QString() : QStringLiteral("holds a quote or a character that is not ASCII");
}

QString faultOf(const QStringList &cells, int columnCount)
{
    if (cells.size() != columnCount) {
        return QStringLiteral("%1 cells instead of %2")
            .arg(QString::number(cells.size()), QString::number(columnCount));
    }
    return cells.contains(QString()) ? QStringLiteral("an empty cell") : QString();
}

} // namespace

csvRow::csvRow(const QString &place, const QStringList &columns, const QStringList &cells)
    : where(place),
      columnNames(columns),
      cellTexts(cells)
{
}

QString csvRow::text(const char *column) const
{
    return cellTexts.value(columnNames.indexOf(QLatin1String(column)));
}

double csvRow::number(const char *column, double lowest, double highest)
{
    const QString cell = text(column);
    bool isNumber = false;
    const double value = cell.toDouble(&isNumber);
    if (isNumber && value >= lowest && value <= highest)
        return value;
    fail(QStringLiteral("%1 is '%2', which is no number from %3 to %4")
             .arg(QLatin1String(column), cell, QString::number(lowest), QString::number(highest)));
    return lowest;
}

int csvRow::count(const char *column, int lowest, int highest)
{
    const double value = number(column, lowest, highest);
    if (value != std::floor(value))
        fail(QStringLiteral("%1 is '%2', which is no whole number")
                 .arg(QLatin1String(column), text(column)));
    return static_cast<int>(value);
}

void csvRow::fail(const QString &what)
{
    if (firstError.isEmpty())
        firstError = QStringLiteral("%1: %2").arg(where, what);
}

QVector<csvRow> readCsv(const QString &name, const QByteArray &content, const QStringList &columns,
                        QString &error)
{
    const QString fault = faultOf(content);
    if (!fault.isEmpty()) {
        error = QStringLiteral("%1 %2").arg(name, fault);
        return {};
    }
    QStringList lines = QString::fromLatin1(content).split(QLatin1Char('\n'));
    lines.removeLast();
    if (lines.first() != columns.join(QLatin1Char(','))) {
        error = QStringLiteral("%1, line 1: the columns are not %2")
                    .arg(name, columns.join(QLatin1Char(',')));
        return {};
    }
    QVector<csvRow> rows;
    for (int i = 1; i < lines.size(); ++i) {
        const QString place = QStringLiteral("%1, line %2").arg(name, QString::number(i + 1));
        const QStringList cells = lines.at(i).split(QLatin1Char(','));
        const QString rowFault = faultOf(cells, columns.size());
        if (!rowFault.isEmpty()) {
            error = QStringLiteral("%1: %2").arg(place, rowFault);
            return {};
        }
        rows.append(csvRow(place, columns, cells));
    }
    return rows;
}

} // namespace reference
