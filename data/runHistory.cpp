// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runHistory.h"

#include "data/runComparison.h"
#include "data/runValues.h"

#include <algorithm>

namespace
{

/// The worst that is to be said of test @p name in @p run, and every remark on it once.
QString judgementOn(const runRecord &run, const QString &name)
{
    steadiness worst = steadiness::good;
    QStringList sentences;
    for (const testRun &test : run.tests) {
        if (test.name != name)
            continue;
        const verdict found = verdictOf(test, run);
        worst = std::max(worst, found.level);
        for (const remark &one : found.remarks)
            sentences.append(one.sentence);
    }
    sentences.removeDuplicates();
    return (QStringList(textOf(worst)) + sentences).join(QStringLiteral("; "));
}

QString judgementOn(const runRecord &run)
{
    const auto steady = std::count_if(run.tests.begin(), run.tests.end(), [&](const testRun &test) {
        return verdictOf(test, run).level == steadiness::good;
    });
    QStringList texts = {QStringLiteral("%1 of %2 tests good").arg(steady).arg(run.tests.size())};
    if (run.isStopped)
        texts.append(QStringLiteral("stopped before its end"));
    for (const remark &one : remarksOf(run))
        texts.append(one.sentence);
    return texts.join(QStringLiteral("; "));
}

} // namespace

QStringList testNamesOf(const std::vector<runRecord> &runs)
{
    QStringList names;
    for (const runRecord &run : runs)
        names += testNamesOf(run);
    names.removeDuplicates();
    return names;
}

std::vector<historyPoint> historyOf(const std::vector<runRecord> &runs, const QString &name)
{
    std::vector<historyPoint> points;
    const bool isMean = name.isEmpty();
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const runRecord &run = runs.at(i);
        std::optional<double> value = valueOf(run, name);
        if (isMean) {
            value = compared(comparedTestsOf(runs.front()), comparedTestsOf(run)).geometricMean;
            if (value)
                *value *= 100;
        }
        if (!value)
            continue;
        points.push_back({static_cast<int>(i), run.started, *value, run.build.version,
                          isMean ? judgementOn(run) : judgementOn(run, name)});
    }
    return points;
}

QString unitOf(const std::vector<runRecord> &runs, const QString &name)
{
    for (const runRecord &run : runs) {
        for (const testRun &test : run.tests) {
            if (test.name == name && !test.unit.isEmpty())
                return test.unit + QStringLiteral("/s");
        }
    }
    return {};
}
