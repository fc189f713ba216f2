// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/groupRules.h"

#include "server/rules/processorName.h"
#include "server/rules/sourceToken.h"

#include <QMap>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <deque>
#include <iterator>
#include <vector>

namespace
{

/// Of an even number of values, the mean of the two in the middle. Changes their order.
float median(std::vector<float> &values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1)
        return *middle;
    return (*std::max_element(values.begin(), middle) + *middle) / 2;
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

using runs = std::vector<const countedRun *>;

/// The medians of @p all, of one group.
countedRun middleOf(const runs &all)
{
    QVector<QString> names;
    std::vector<float> values;
    for (const countedRun *run : all) {
        names.append(run->processor);
        values.push_back(run->clock);
    }
    countedRun middle = *all.front();
    middle.processor = mostFrequentSpelling(names);
    middle.clock = median(values);
    for (int test = 0; test < middle.results.size(); ++test) {
        values.clear();
        for (const countedRun *run : all)
            values.push_back(run->results.at(test));
        middle.results[test] = median(values);
    }
    return middle;
}

benchResults machineOf(const countedRun &run)
{
    benchResults machine(run.processor, run.os, run.processor, run.clock, run.threads);
    for (int test = 0; test < run.results.size(); ++test)
        machine.setTest(wholeRunTests().at(test), benchResults::test(run.results.at(test)));
    return machine;
}

/// What one source uploaded on one day: the run, or the middle of several, with the time of the
/// first.
class statements
{
public:
    explicit statements(const QVector<countedRun> &all)
    {
        runs sorted;
        for (const countedRun &run : all)
            sorted.push_back(&run);
        const auto isBefore = [](const countedRun *a, const countedRun *b) {
            const qint64 dayOfA = dayOf(a->received);
            const qint64 dayOfB = dayOf(b->received);
            return dayOfA == dayOfB ? a->source < b->source : dayOfA < dayOfB;
        };
        std::sort(sorted.begin(), sorted.end(), isBefore);
        for (auto first = sorted.begin(); first != sorted.end();) {
            const auto last = std::upper_bound(first, sorted.end(), *first, isBefore);
            found.push_back(last - first == 1 ? *first : middle(runs(first, last)));
            first = last;
        }
    }

    const runs &all() const { return found; }

private:
    const countedRun *middle(const runs &several)
    {
        middles.push_back(middleOf(several));
        const auto isEarlier = [](const countedRun *a, const countedRun *b) {
            return a->received < b->received;
        };
        middles.back().received =
            (*std::min_element(several.begin(), several.end(), isEarlier))->received;
        return &middles.back();
    }

    std::deque<countedRun> middles; // whose members stay where they are
    runs found;
};

/// The range of a test's results that counts.
struct range {
    float least = 0;
    float most = 0;
};

range rangeOf(std::vector<float> &results)
{
    constexpr float toStandardDeviation = 1.4826F; // of a normal distribution
    const float middle = median(results);
    for (float &result : results)
        result = std::abs(result - middle);
    const float deviation =
        std::max(toStandardDeviation * median(results), leastDeviation * middle);
    return {middle - mostDeviations * deviation, middle + mostDeviations * deviation};
}

/// The ranges of all tests.
class resultRanges
{
public:
    explicit resultRanges(const runs &all)
    {
        std::vector<float> results;
        for (int test = 0; !all.empty() && test < all.front()->results.size(); ++test) {
            results.clear();
            for (const countedRun *run : all)
                results.push_back(run->results.at(test));
            ranges.append(rangeOf(results));
        }
    }

    bool haveInside(const countedRun &run) const
    {
        for (int test = 0; test < ranges.size(); ++test) {
            const float result = run.results.at(test);
            if (!(result >= ranges.at(test).least && result <= ranges.at(test).most))
                return false;
        }
        return true;
    }

private:
    QVector<range> ranges;
};

QVector<countedRun> wholeRunsAmong(const QVector<countedUpload> &uploads)
{
    QVector<countedRun> whole;
    for (const countedUpload &upload : uploads) {
        if (const auto run = countedRunOf(upload.machine, upload.received, upload.source))
            whole.append(*run);
    }
    return whole;
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
    return judge(wholeRunsAmong(uploads), rules);
}

groupVerdict judge(const QVector<countedRun> &all, ruleSet rules)
{
    const statements said(all);
    const resultRanges ranges(said.all());
    runs counted;
    std::copy_if(said.all().begin(), said.all().end(), std::back_inserter(counted),
                 [&ranges](const countedRun *run) { return ranges.haveInside(*run); });
    if (counted.empty())
        return {};
    QSet<qint64> days;
    QSet<QByteArray> sources;
    groupVerdict verdict;
    verdict.first = counted.front()->received;
    for (const countedRun *one : counted) {
        const qint64 day = dayOf(one->received);
        days.insert(day);
        // Unknown sources of two days may be the same, as known ones may.
        sources.insert(one->source.isEmpty() ? QByteArray::number(day) : one->source);
        verdict.first = std::min(verdict.first, one->received);
    }
    verdict.sources = sources.size();
    verdict.beta = machineOf(middleOf(counted));
    if (rules == ruleSet::circle
        || (verdict.sources >= sourcesForTheNormalList && days.size() >= daysForTheNormalList))
        verdict.normal = verdict.beta;
    return verdict;
}

QVector<int> outliersAmong(const QVector<countedUpload> &uploads)
{
    const QVector<countedRun> whole = wholeRunsAmong(uploads);
    const statements said(whole);
    const resultRanges ranges(said.all());
    QVector<int> found;
    for (int i = 0; i < uploads.size(); ++i) {
        const countedUpload &upload = uploads.at(i);
        const auto run = countedRunOf(upload.machine, upload.received, upload.source);
        if (run && !ranges.haveInside(*run))
            found.append(i);
    }
    return found;
}
