// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/csvTable.h"

#include <cmath>

namespace reference
{

csvRow::csvRow(const QStringList &columns, const QStringList &cells)
    : columnNames(columns),
      cellTexts(cells)
{
    if (cells.size() != columns.size()) {
        fail(QStringLiteral("%1 cells instead of %2")
                 .arg(QString::number(cells.size()), QString::number(columns.size())));
    }
}

QString csvRow::cell(const char *column) const
{
    return cellTexts.value(columnNames.indexOf(QLatin1String(column)));
}

QString csvRow::text(const char *column)
{
    if (cell(column).isEmpty())
        fail(QStringLiteral("%1 is empty").arg(QLatin1String(column)));
    return cell(column);
}

double csvRow::number(const char *column, double lowest, double highest)
{
    bool isNumber = false;
    const double value = cell(column).toDouble(&isNumber);
    if (isNumber && value >= lowest && value <= highest)
        return value;
    fail(QStringLiteral("%1 is '%2', not a number from %3 to %4")
             .arg(QLatin1String(column), cell(column), QString::number(lowest),
                  QString::number(highest)));
    return lowest;
}

int csvRow::count(const char *column, int lowest, int highest)
{
    const double value = number(column, lowest, highest);
    if (value != std::floor(value)) {
        fail(QStringLiteral("%1 is '%2', not a whole number")
                 .arg(QLatin1String(column), cell(column)));
    }
    return static_cast<int>(value);
}

void csvRow::fail(const QString &what)
{
    if (firstError.isEmpty())
        firstError = what;
}

outcome<void> readRows(const QString &name, const QByteArray &csv, const QString &columns,
                       const std::function<void(csvRow &)> &read)
{
    const auto errorAt = [&name](int line, const QString &what) {
        return failure(QStringLiteral("%1, line %2: %3").arg(name, QString::number(line), what));
    };
    if (csv.isEmpty())
        return failure(QStringLiteral("%1 is empty or missing").arg(name));
    QStringList lines = QString::fromUtf8(csv).split(QLatin1Char('\n'));
    if (lines.last().isEmpty())
        lines.removeLast();
    if (lines.first() != columns)
        return errorAt(1, QStringLiteral("the columns are not %1").arg(columns));
    for (int i = 1; i < lines.size(); ++i) {
        csvRow row(columns.split(QLatin1Char(',')), lines.at(i).split(QLatin1Char(',')));
        read(row);
        if (!row.error().isEmpty())
            return errorAt(i + 1, row.error());
    }
    return {};
}

} // namespace reference
