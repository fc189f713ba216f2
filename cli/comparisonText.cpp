// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/comparisonText.h"

#include "data/textTable.h"
#include "data/visibleText.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr int columnsForValues = 100;
constexpr int shortestBar = 8;

QString number(double value)
{
    return QString::number(value, 'f', 3);
}

QString intervalText(const testRatio &test)
{
    if (test.isNoClearDifference())
        return QStringLiteral("no clear difference");
    if (!test.ratioInterval)
        return {};
    return QStringLiteral("%1 to %2")
        .arg(number(test.ratioInterval->lower), number(test.ratioInterval->upper));
}

/// A bar of at most @p columns for @p ratio, where @p largest takes all of them; a line stands
/// where the ratio is 1.
QString bar(double ratio, double largest, int columns)
{
    const auto place = [&](double value) {
        return std::clamp(static_cast<int>(std::lround(value / largest * columns)), 1, columns);
    };
    QString text = QString(place(ratio), QLatin1Char('#')).leftJustified(place(1));
    text[place(1) - 1] = QLatin1Char('|');
    return text;
}

std::vector<QStringList> rowsOf(const runComparison &comparison, bool hasValues)
{
    std::vector<QStringList> rows = {{QStringLiteral("test")}};
    if (hasValues)
        rows.front() << QStringLiteral("A") << QStringLiteral("B") << QString();
    rows.front() << QStringLiteral("B / A") << QStringLiteral("95 % interval");
    for (const testRatio &test : comparison.tests) {
        QStringList row(visibleText(test.name));
        if (hasValues) {
            row << QString::number(test.first, 'g', 5) << QString::number(test.second, 'g', 5)
                << visibleText(test.unit) + QStringLiteral("/s");
        }
        rows.push_back(row << number(test.ratio) << intervalText(test));
    }
    return rows;
}

/// Puts bars behind the lines of @p table, which has a heading, as far as @p columns go.
QString withBars(const QString &table, const runComparison &comparison, int columns)
{
    QStringList lines = table.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    int width = 0;
    for (const QString &line : lines)
        width = std::max(width, columnsOf(line));
    const int room = columns - width - 3;
    if (room < shortestBar)
        return table;
    double largest = 1;
    for (const testRatio &test : comparison.tests)
        largest = std::max(largest, test.ratio);
    for (int i = 1; i < lines.size(); ++i) {
        const QString padding(width - columnsOf(lines.at(i)) + 2, QLatin1Char(' '));
        const double ratio = comparison.tests.at(static_cast<std::size_t>(i) - 1).ratio;
        lines[i] += padding + bar(ratio, largest, room);
    }
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QString missingText(const QStringList &names, const QString &what)
{
    if (names.isEmpty())
        return {};
    QStringList shown;
    for (const QString &name : names)
        shown.append(visibleText(name));
    return QStringLiteral("%1: %2\n").arg(what, shown.join(QStringLiteral(", ")));
}

} // namespace

QString comparisonText(const runComparison &comparison, const comparedTitles &titles, int columns)
{
    QString text = QStringLiteral("A: %1\nB: %2\n\n")
                       .arg(visibleText(titles.first), visibleText(titles.second));
    const int tests = static_cast<int>(comparison.tests.size());
    if (tests > 0) {
        const auto rows = rowsOf(comparison, columns >= columnsForValues);
        text += withBars(textTable(rows, {3}), comparison, columns) + QLatin1Char('\n');
    }
    if (comparison.geometricMean) {
        text +=
            QStringLiteral("Geometric mean of B / A over %1: %2\n")
                .arg(tests == 1 ? QStringLiteral("1 test") : QStringLiteral("%1 tests").arg(tests),
                     number(*comparison.geometricMean));
    }
    return text + missingText(comparison.onlyFirst, QStringLiteral("B has no result of"))
           + missingText(comparison.onlySecond, QStringLiteral("A has no result of"))
           + missingText(comparison.otherResolution,
                         QStringLiteral("not the same resolution, so not compared"));
}

QString standingsText(const std::optional<standing> &first, const std::optional<standing> &second)
{
    if (!second)
        return {};
    const auto place = [](const char *side, const standing &of) {
        return QStringLiteral("%1 has %2, place %3")
            .arg(QString::fromLatin1(side), QString::number(of.score, 'f', 1))
            .arg(of.place);
    };
    return QStringLiteral("Combined score among the %1 machines of the list: %2%3\n")
        .arg(second->machines)
        .arg(first ? place("A", *first) + QStringLiteral("; ") : QString(), place("B", *second));
}
