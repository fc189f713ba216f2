// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/ranking.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace ranking
{
namespace
{

bool isCounted(const rankedTest &test, testKind kind)
{
    if (test.isSingleOnly)
        return false;
    if (kind == singleCoreTests)
        return !test.isMulticore;
    if (kind == multiCoreTests)
        return test.isMulticore;
    return true;
}

/// A result, or with @p isPerClock what one clock cycle, or one of each thread, contributed to it.
float share(float result, const benchResults &machine, bool isMulticore, bool isPerClock)
{
    if (!isPerClock)
        return result;
    const float perCycle = result / machine.getFrequency();
    return isMulticore ? perCycle / static_cast<float>(machine.getThreads()) : perCycle;
}

float scoreOf(const benchResults &machine, const benchResults &reference,
              const QVector<rankedTest> &tests, const choices &wanted)
{
    float sum = 0;
    int count = 0;
    for (const rankedTest &test : tests) {
        if (!isCounted(test, wanted.kind))
            continue;
        const auto result = machine.getTests().constFind(test.name);
        const auto unit = reference.getTests().constFind(test.name);
        if (result == machine.getTests().constEnd() || unit == reference.getTests().constEnd())
            continue;
        const bool isMulticore = test.isMulticore;
        sum += share(result->value, machine, isMulticore, wanted.isPerClock)
               / share(unit->value, reference, isMulticore, wanted.isPerClock);
        ++count;
    }
    return sum / static_cast<float>(count) * 100.0F;
}

/// Descending, with what is not a number at the end: a sort needs an order for those too.
bool isBetter(const benchResults &left, const benchResults &right)
{
    if (std::isnan(left.getScore()))
        return false;
    return std::isnan(right.getScore()) || left.getScore() > right.getScore();
}

/// Selects the machines from @p begin up to, but without, @p end that exist.
void selectRange(QVector<benchResults> &machines, int begin, int end)
{
    for (int i = std::max(begin, 0); i < std::min(end, machines.size()); ++i)
        machines[i].setSelected(true);
}

void selectSpread(QVector<benchResults> &machines, int count)
{
    const auto size = static_cast<float>(machines.size());
    const float step = size / static_cast<float>(count);
    for (int i = 0; static_cast<float>(i) * step < size; ++i) {
        const auto index = static_cast<int>(std::round(static_cast<float>(i) * step));
        selectRange(machines, index, index + 1); // the last one may round to one too many
    }
}

void select(QVector<benchResults> &machines, selectionMode mode, int count)
{
    const int size = machines.size();
    if (mode == allDevices) {
        selectRange(machines, 0, size);
        return;
    }
    if (count <= 0)
        return;
    switch (mode) {
    case mixedDevices:
        selectSpread(machines, count);
        break;
    case topDevices:
        selectRange(machines, 0, count);
        break;
    case mediumDevices:
        selectRange(machines, size / 2 - count / 2, size / 2 + count / 2);
        break;
    case lastDevices:
        selectRange(machines, size - 1 - count, size - 1);
        break;
    default:
        break;
    }
}

/// Those that @p osMask lets through, and this machine, the last one, in any case.
QVector<benchResults> filtered(const QVector<benchResults> &machines, int osMask)
{
    QVector<benchResults> result;
    for (int i = 0; i < machines.size(); ++i) {
        if (i + 1 == machines.size() || osMatches(machines.at(i).getOs(), osMask))
            result.append(machines.at(i));
    }
    return result;
}

benchResults meanOf(const QVector<benchResults> &group)
{
    benchResults result = group.first();
    if (group.size() == 1)
        return result;
    for (int i = 1; i < group.size(); ++i) {
        const QMap<QString, benchResults::test> &tests = group.at(i).getTests();
        for (auto test = tests.begin(); test != tests.end(); ++test)
            result.getTests()[test.key()].value += test->value;
    }
    for (benchResults::test &test : result.getTests())
        test.value /= static_cast<float>(group.size());
    return result;
}

} // namespace

bool osMatches(const QString &os, int osMask)
{
    return (os == QLatin1String("android") && (osMask & androidFlag))
           || (os == QLatin1String("linux") && (osMask & linuxFlag))
           || (os == QLatin1String("windows") && (osMask & windowsFlag));
}

QVector<benchResults> mergedByName(const QVector<benchResults> &machines)
{
    QMap<QString, QVector<benchResults>> groups;
    for (const benchResults &machine : machines)
        groups[machine.getName().toLower()].append(machine);
    QVector<benchResults> result;
    for (const QVector<benchResults> &group : qAsConst(groups))
        result.append(meanOf(group));
    return result;
}

rankedList rankedAll(const QVector<benchResults> &machines, const QVector<rankedTest> &tests,
                     const choices &wanted)
{
    if (machines.size() < 2)
        return {};
    QVector<benchResults> ranked = filtered(machines, wanted.osMask);
    if (wanted.isMerged) {
        const benchResults own = ranked.takeLast();
        ranked = mergedByName(ranked);
        ranked.append(own);
    }

    const bool isOwnMeasure = ranked.last().isMeasured();
    // A copy: the list it comes from is about to be changed and reordered.
    const benchResults measure = isOwnMeasure ? ranked.last() : ranked.first();
    for (benchResults &machine : ranked) {
        machine.setSelected(false);
        machine.setScore(scoreOf(machine, measure, tests, wanted));
    }
    std::stable_sort(ranked.begin(), ranked.end() - 1, isBetter);
    return {ranked, measure, isOwnMeasure};
}

QVector<benchResults> shownOf(QVector<benchResults> ranked, const choices &wanted)
{
    if (ranked.isEmpty())
        return {};
    select(ranked, wanted.mode, wanted.count);
    ranked.last().setSelected(true);

    QVector<benchResults> shown;
    std::copy_if(ranked.begin(), ranked.end(), std::back_inserter(shown),
                 [](const benchResults &machine) { return machine.isSelected(); });
    return shown;
}

QVector<benchResults> rankedMachines(const QVector<benchResults> &machines,
                                     const QVector<rankedTest> &tests, const choices &wanted)
{
    return shownOf(rankedAll(machines, tests, wanted).machines, wanted);
}

QStringList missingResults(const benchResults &machine, const QVector<rankedTest> &tests,
                           testKind kind)
{
    QStringList missing;
    for (const rankedTest &test : tests) {
        if (isCounted(test, kind) && !(machine.getTests().value(test.name).value > 0.0F))
            missing.append(test.name);
    }
    return missing;
}

gaps gapsOf(const QVector<benchResults> &shown, const QVector<rankedTest> &tests,
            const choices &wanted)
{
    gaps found;
    found.machines = shown.size();
    if (shown.isEmpty() || wanted.kind == oneTest)
        return found;
    found.bars =
        static_cast<int>(std::count_if(shown.begin(), shown.end(), [](const benchResults &machine) {
            return !std::isfinite(machine.getScore());
        }));
    const QMap<QString, benchResults::test> &own = shown.last().getTests();
    for (const rankedTest &test : tests) {
        if (!isCounted(test, wanted.kind))
            continue;
        ++found.tests;
        found.results += own.value(test.name).value > 0.0F ? 1 : 0;
    }
    return found;
}

float barValue(const benchResults &machine, testKind kind, const QString &testName)
{
    float value = machine.getScore();
    if (kind == oneTest) {
        const auto result = machine.getTests().constFind(testName);
        value = result == machine.getTests().constEnd() ? 0.0F : result->value;
    }
    return value > 0.0F ? value : smallestBar;
}

} // namespace ranking
