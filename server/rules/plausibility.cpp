// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/plausibility.h"

#include "data/builtInList.h"
#include "tests/suiteFacts.h"

#include <algorithm>

namespace
{

double resultOf(const benchResults &machine, const QString &test)
{
    return static_cast<double>(machine.getTests().value(test).value);
}

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
        learn(machine);
}

const plausibility &plausibility::ofBuiltInList()
{
    static const plausibility bounds(builtInMachines());
    return bounds;
}

void plausibility::addTests()
{
    for (const testFacts &test : suiteFacts()) {
        if (!test.isInFullRuns())
            continue;
        knownTest known{QString::fromUtf8(test.name), test.isMulticore(), {}};
        for (const testFacts &other : suiteFacts()) {
            if (test.isMulticore() && !other.isMulticore() && &other.workload == &test.workload)
                known.singleCore = QString::fromUtf8(other.name);
        }
        tests.append(known);
    }
}

void plausibility::addRatios()
{
    for (auto first = tests.begin(); first != tests.end(); ++first) {
        for (auto second = first + 1; second != tests.end(); ++second) {
            if (first->isMulticore == second->isMulticore)
                ratios.append({first->name, second->name});
        }
    }
}

void plausibility::learn(const benchResults &machine)
{
    for (knownTest &test : tests)
        test.bestPerClock = std::max(test.bestPerClock, perClock(machine, test));
    for (knownRatio &ratio : ratios) {
        const double first = resultOf(machine, ratio.first);
        const double second = resultOf(machine, ratio.second);
        if (!(first > 0 && second > 0))
            continue;
        ratio.least = std::min(ratio.least, first / second / static_cast<double>(ratioFactor));
        ratio.most = std::max(ratio.most, first / second * static_cast<double>(ratioFactor));
    }
}

/// By GHz, and by thread where all cores work. An unknown clock, and one above the list's fastest,
/// counts as the latter: otherwise a made-up clock would make any result plausible.
double plausibility::perClock(const benchResults &machine, const knownTest &test) const
{
    const float own = machine.getFrequency();
    const float clock = own > 0 ? std::min(own, fastestClock) : fastestClock;
    const int threads = test.isMulticore ? std::max(machine.getThreads(), 1) : 1;
    return resultOf(machine, test.name) / static_cast<double>(clock) * 1e9 / threads;
}

outcome<void> plausibility::checkPerClock(const benchResults &machine, const knownTest &test) const
{
    const double found = perClock(machine, test);
    const double most = static_cast<double>(perClockFactor) * test.bestPerClock;
    if (!(found > most))
        return {};
    return failure(QStringLiteral("'%1' is %2 per GHz%3, more than any processor's %4")
                       .arg(test.name, text(found),
                            test.isMulticore ? QStringLiteral(" and thread") : QString(),
                            text(most)));
}

outcome<void> plausibility::checkScaling(const benchResults &machine, const knownTest &test)
{
    const double all = resultOf(machine, test.name);
    const double one = resultOf(machine, test.singleCore);
    if (!(all > 0 && one > 0))
        return {};
    const double most = static_cast<double>(scalingFactor) * machine.getThreads();
    const double found = all / one;
    if (found >= static_cast<double>(leastScaling) && found <= most)
        return {};
    return failure(
        QStringLiteral("'%1' is %2 times '%3', which %4 thread(s) cannot be")
            .arg(test.name, text(found), test.singleCore, QString::number(machine.getThreads())));
}

outcome<void> plausibility::checkRatio(const benchResults &machine, const knownRatio &ratio)
{
    const double first = resultOf(machine, ratio.first);
    const double second = resultOf(machine, ratio.second);
    if (!(first > 0 && second > 0) || ratio.most <= 0)
        return {};
    const double found = first / second;
    if (found >= ratio.least && found <= ratio.most)
        return {};
    return failure(
        QStringLiteral("'%1' is %2 times '%3', which must be from %4 to %5")
            .arg(ratio.first, text(found), ratio.second, text(ratio.least), text(ratio.most)));
}

outcome<void> plausibility::check(const benchResults &machine) const
{
    outcome<void> done;
    for (const knownTest &test : tests) {
        done = done.and_then([&] { return checkPerClock(machine, test); });
        if (test.isMulticore)
            done = done.and_then([&] { return checkScaling(machine, test); });
    }
    for (const knownRatio &ratio : ratios)
        done = done.and_then([&] { return checkRatio(machine, ratio); });
    return done;
}
