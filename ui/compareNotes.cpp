// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/compareNotes.h"

#include "data/estimate.h"
#include "ui/plainText.h"

#include <QCoreApplication>

#include <algorithm>

namespace
{

QString translated(const char *text)
{
    return QCoreApplication::translate("compareWindow", text);
}

/// @p names in a row; from @p most on, how many more there are.
QString listed(const QStringList &names, int most)
{
    QStringList shown;
    for (const QString &name : names.mid(0, most))
        shown.append(plainText::shortened(name.trimmed(), 40));
    const QString row = shown.join(QStringLiteral(", "));
    if (names.size() <= most)
        return row;
    return translated("%1 and %2 more").arg(row, QString::number(names.size() - most));
}

QString nameOfMeasure(const ranking::rankedList &ranked)
{
    return ranked.isOwnMeasure ? translated("this machine")
                               : plainText::shortened(ranked.measure.getName(), 40);
}

} // namespace

QString compareNotes::onEstimates(const QVector<benchResults> &machines)
{
    // The labels by processor do not have the machines' names, which say so otherwise.
    const auto count =
        std::count_if(machines.begin(), machines.end(),
                      [](const benchResults &machine) { return isEstimate(machine.getName()); });
    if (count == 0)
        return {};
    return translated("%1 of %2 bars are modelled estimates (est.), not measured results")
        .arg(QString::number(count), QString::number(machines.size()));
}

QString compareNotes::onGaps(const ranking::gaps &found, bool isOwnMeasure, bool isPerClock)
{
    if (found.bars == 0)
        return {};
    if (isOwnMeasure && found.results < found.tests) {
        if (found.results == 0) {
            return translated("None of the %1 tests counted here has a result on this machine, so "
                              "it cannot be compared: run the full benchmark, or choose a test "
                              "that has one")
                .arg(QString::number(found.tests));
        }
        const char *const text =
            found.results == 1
                ? "Only %1 of %2 tests has a result on this machine, so it cannot be compared: "
                  "run the full benchmark, or choose that test"
                : "Only %1 of %2 tests have a result on this machine, so it cannot be compared: "
                  "run the full benchmark, or choose one of those tests";
        return translated(text).arg(QString::number(found.results), QString::number(found.tests));
    }
    return translated(isPerClock ? "%1 of %2 bars are missing: a clock is not known, or results are"
                                   " missing"
                                 : "%1 of %2 bars are missing: there are no results to compare")
        .arg(QString::number(found.bars), QString::number(found.machines));
}

QString compareNotes::onPlace(const placing &found)
{
    const QString place = translated("place %1 of %2")
                              .arg(QString::number(found.place), QString::number(found.machines));
    const auto percent = found.percentSlower();
    if (!percent)
        return place;
    return place + translated(", faster than %1 %").arg(*percent);
}

QString compareNotes::onMissing(const QStringList &missing, bool isOneTest)
{
    if (missing.isEmpty() || isOneTest)
        return translated(
            "no place: this machine has no result to compare; run the full benchmark");
    return translated("no place: this machine has no result of %1; run the full benchmark")
        .arg(listed(missing, 3));
}

QString compareNotes::onMeasure(const ranking::rankedList &ranked)
{
    return translated("100 = %1").arg(nameOfMeasure(ranked));
}

QString compareNotes::ofMeasure(const ranking::rankedList &ranked)
{
    return translated("% of %1").arg(nameOfMeasure(ranked));
}

QString compareNotes::onBarless(const QStringList &names)
{
    return names.isEmpty() ? QString() : translated("without a bar: %1").arg(listed(names, 3));
}
