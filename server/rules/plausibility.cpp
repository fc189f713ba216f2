// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/plausibility.h"

#include "data/builtInList.h"
#include "tests/suiteFacts.h"

#include <QHash>

#include <algorithm>

namespace
{

QString text(double number)
{
    return QString::number(number, 'g', 4);
}

} // namespace

bool isWholeRun(const benchResults &machine)
{
    static const QVector<QString> wanted = [] {
        QVector<QString> names;
        for (const testFacts &test : suiteFacts()) {
            if (test.isInFullRuns())
                names.append(QString::fromUtf8(test.name));
        }
        return names;
    }();
    return std::all_of(wanted.begin(), wanted.end(), [&machine](const QString &test) {
        return machine.getTests().value(test).value > 0;
    });
}

plausibility::plausibility(const QVector<benchResults> &knownMachines)
{
    addTests();
    addRatios();
    for (const benchResults &machine : knownMachines)
        fastestClock = std::max(fastestClock, machine.getFrequency());
    for (const benchResults &machine : knownMachines)
        learn(resultsOf(machine));
}

const plausibility &plausibility::ofBuiltInList()
{
    static const plausibility bounds(builtInMachines());
    return bounds;
}

void plausibility::addTests()
{
    QHash<const workloadFacts *, int> singleCores;
    for (const testFacts &test : suiteFacts()) {
        if (!test.isInFullRuns())
            continue;
        if (!test.isMulticore())
            singleCores.insert(&test.workload, tests.size());
        tests.append({QString::fromUtf8(test.name), test.isMulticore(),
                      test.isMulticore() ? singleCores.value(&test.workload, -1) : -1});
    }
}

void plausibility::addRatios()
{
    for (int first = 0; first < tests.size(); ++first) {
        for (int second = first + 1; second < tests.size(); ++second) {
            if (tests.at(first).isMulticore == tests.at(second).isMulticore)
                ratios.append({first, second});
        }
    }
}

void plausibility::learn(const measured &machine)
{
    constexpr auto factor = static_cast<double>(ratioFactor);
    for (int i = 0; i < tests.size(); ++i) {
        knownTest &test = tests[i];
        test.bestPerClock = std::max(test.bestPerClock, machine.perClock(i, test.isMulticore));
    }
    for (knownRatio &ratio : ratios) {
        const double first = machine.results.at(ratio.first);
        const double second = machine.results.at(ratio.second);
        if (first > 0 && second > 0) {
            ratio.least = std::min(ratio.least, first / second / factor);
            ratio.most = std::max(ratio.most, first / second * factor);
        }
    }
}

/// An unknown clock, and one above the list's fastest, counts as the latter: otherwise a made-up
/// clock would make any result plausible.
plausibility::measured plausibility::resultsOf(const benchResults &machine) const
{
    measured found;
    const float clock = machine.getFrequency();
    found.clock =
        static_cast<double>(clock > 0 ? std::min(clock, fastestClock) : fastestClock) * 1e-9;
    found.threads = std::max(machine.getThreads(), 1);
    for (const knownTest &test : tests)
        found.results.append(static_cast<double>(machine.getTests().value(test.name).value));
    return found;
}

outcome<void> plausibility::checkPerClock(const measured &machine, int test) const
{
    const knownTest &known = tests.at(test);
    const double found = machine.perClock(test, known.isMulticore);
    const double most = static_cast<double>(perClockFactor) * known.bestPerClock;
    if (found <= most)
        return {};
    return failure(QStringLiteral("'%1' is %2 per GHz%3, more than any processor's %4")
                       .arg(known.name, text(found),
                            known.isMulticore ? QStringLiteral(" and thread") : QString(),
                            text(most)));
}

outcome<void> plausibility::checkScaling(const measured &machine, int test) const
{
    const knownTest &known = tests.at(test);
    const double one = known.singleCore < 0 ? 0 : machine.results.at(known.singleCore);
    const double all = machine.results.at(test);
    if (!(all > 0 && one > 0))
        return {};
    const double most = static_cast<double>(scalingFactor) * machine.threads;
    const double found = all / one;
    if (found >= static_cast<double>(leastScaling) && found <= most)
        return {};
    return failure(QStringLiteral("'%1' is %2 times '%3', which %4 thread(s) cannot be")
                       .arg(known.name, text(found), tests.at(known.singleCore).name,
                            QString::number(machine.threads)));
}

outcome<void> plausibility::checkRatio(const measured &machine, const knownRatio &ratio) const
{
    const double first = machine.results.at(ratio.first);
    const double second = machine.results.at(ratio.second);
    if (!(first > 0 && second > 0) || ratio.most <= 0)
        return {};
    const double found = first / second;
    if (found >= ratio.least && found <= ratio.most)
        return {};
    return failure(QStringLiteral("'%1' is %2 times '%3', which must be from %4 to %5")
                       .arg(tests.at(ratio.first).name, text(found), tests.at(ratio.second).name,
                            text(ratio.least), text(ratio.most)));
}

outcome<void> plausibility::check(const benchResults &machine) const
{
    const measured found = resultsOf(machine);
    outcome<void> done;
    for (int test = 0; test < tests.size(); ++test) {
        done = done.and_then([&] { return checkPerClock(found, test); }).and_then([&] {
            return checkScaling(found, test);
        });
    }
    for (const knownRatio &ratio : ratios)
        done = done.and_then([&] { return checkRatio(found, ratio); });
    return done;
}
