// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/groupRules.h"

#include "server/rules/plausibility.h"
#include "server/rules/processorName.h"
#include "server/rules/sourceToken.h"

#include <QMap>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{

/// Of an even number of values, the mean of the two in the middle.
float median(QVector<float> values)
{
    std::sort(values.begin(), values.end());
    const int middle = values.size() / 2;
    return values.size() % 2 == 1 ? values.at(middle)
                                  : (values.at(middle - 1) + values.at(middle)) / 2;
}

/// The published spelling that most of @p names have; of those that are equally many, the first in
/// the order of their characters.
QString mostFrequentSpelling(const QVector<QString> &names)
{
    QMap<QString, int> asGiven; // far fewer than names, and each takes a while
    for (const QString &name : names)
        ++asGiven[name];
    QMap<QString, int> counts;
    for (auto name = asGiven.begin(); name != asGiven.end(); ++name)
        counts[publishedProcessorName(name.key()).value_or(name.key())] += *name;
    return std::max_element(counts.begin(), counts.end()).key();
}

/// The machine in the middle of @p machines, all of one group and with the results of whole runs.
benchResults middleOf(const QVector<benchResults> &machines)
{
    QVector<QString> names;
    QVector<float> clocks;
    QMap<QString, QVector<float>> results;
    for (const benchResults &machine : machines) {
        names.append(machine.getCpu());
        clocks.append(machine.getFrequency());
        for (auto test = machine.getTests().begin(); test != machine.getTests().end(); ++test)
            results[test.key()].append(test->value);
    }
    const QString name = mostFrequentSpelling(names);
    const benchResults &any = machines.first();
    benchResults middle(name, any.getOs(), name, median(clocks), any.getThreads());
    for (auto test = results.begin(); test != results.end(); ++test)
        middle.setTest(test.key(), benchResults::test(median(*test)));
    return middle;
}

/// What one source uploaded on one day.
struct statement {
    qint64 day = 0;
    QByteArray source;
    qint64 first = 0;
    benchResults machine;
};

QVector<statement> statementsIn(const QVector<countedUpload> &uploads)
{
    QMap<std::pair<qint64, QByteArray>, QVector<countedUpload>> bySource;
    for (const countedUpload &upload : uploads) {
        if (isWholeRun(upload.machine))
            bySource[{dayOf(upload.received), upload.source}].append(upload);
    }
    QVector<statement> statements;
    for (auto entry = bySource.begin(); entry != bySource.end(); ++entry) {
        QVector<benchResults> machines;
        qint64 first = entry->first().received;
        for (const countedUpload &upload : *entry) {
            machines.append(upload.machine);
            first = std::min(first, upload.received);
        }
        const benchResults one = machines.size() == 1 ? machines.first() : middleOf(machines);
        statements.append({entry.key().first, entry.key().second, first, one});
    }
    return statements;
}

/// The range of a test's results that counts.
struct range {
    float least = 0;
    float most = 0;
};

range rangeOf(const QVector<float> &results)
{
    constexpr float toStandardDeviation = 1.4826F; // of a normal distribution
    const float middle = median(results);
    QVector<float> distances;
    for (const float result : results)
        distances.append(std::abs(result - middle));
    const float deviation =
        std::max(toStandardDeviation * median(distances), leastDeviation * middle);
    return {middle - mostDeviations * deviation, middle + mostDeviations * deviation};
}

/// The ranges of all tests.
class resultRanges
{
public:
    explicit resultRanges(const QVector<statement> &statements)
    {
        QMap<QString, QVector<float>> results;
        for (const statement &one : statements) {
            const QMap<QString, benchResults::test> &tests = one.machine.getTests();
            for (auto test = tests.begin(); test != tests.end(); ++test)
                results[test.key()].append(test->value);
        }
        for (auto test = results.begin(); test != results.end(); ++test)
            ranges.insert(test.key(), rangeOf(*test));
    }

    bool haveInside(const benchResults &machine) const
    {
        const QMap<QString, benchResults::test> &tests = machine.getTests();
        for (auto test = tests.begin(); test != tests.end(); ++test) {
            const range own = ranges.value(test.key());
            if (!(test->value >= own.least && test->value <= own.most))
                return false;
        }
        return true;
    }

private:
    QMap<QString, range> ranges;
};

QVector<statement> withoutOutliers(const QVector<statement> &statements)
{
    const resultRanges ranges(statements);
    QVector<statement> inside;
    std::copy_if(statements.begin(), statements.end(), std::back_inserter(inside),
                 [&ranges](const statement &one) { return ranges.haveInside(one.machine); });
    return inside;
}

} // namespace

QString groupKey(const benchResults &machine)
{
    if (!publishedProcessorName(machine.getCpu()))
        return {};
    // Neither of the last two has a bar in it, so that no name can pass for another key.
    return QStringLiteral("%1|%2|%3")
        .arg(processorKey(machine.getCpu()), machine.getOs(),
             QString::number(machine.getThreads()));
}

groupVerdict judge(const QVector<countedUpload> &uploads, ruleSet rules)
{
    const QVector<statement> counted = withoutOutliers(statementsIn(uploads));
    if (counted.isEmpty())
        return {};
    QSet<qint64> days;
    QSet<QByteArray> sources;
    QVector<benchResults> machines;
    groupVerdict verdict;
    verdict.first = counted.first().first;
    for (const statement &one : counted) {
        days.insert(one.day);
        // Unknown sources of two days may be the same, as known ones may.
        sources.insert(one.source.isEmpty() ? QByteArray::number(one.day) : one.source);
        machines.append(one.machine);
        verdict.first = std::min(verdict.first, one.first);
    }
    verdict.sources = sources.size();
    verdict.beta = middleOf(machines);
    if (rules == ruleSet::circle
        || (verdict.sources >= sourcesForTheNormalList && days.size() >= daysForTheNormalList))
        verdict.normal = verdict.beta;
    return verdict;
}

QVector<int> outliersAmong(const QVector<countedUpload> &uploads)
{
    const resultRanges ranges(statementsIn(uploads));
    QVector<int> found;
    for (int i = 0; i < uploads.size(); ++i) {
        const benchResults &machine = uploads.at(i).machine;
        if (isWholeRun(machine) && !ranges.haveInside(machine))
            found.append(i);
    }
    return found;
}
