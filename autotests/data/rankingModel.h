// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"

#include <QSet>
#include <QStringList>
#include <QVector>

#include <cmath>

/// The ranking once more, as plainly as it can be said, to compare the program's with.
namespace rankingModel
{

struct testFacts {
    QString name;
    bool isMulticore = false;
    bool isSingleOnly = false;
};

/// What the user chose, in the numbers of the controls.
struct wish {
    int kind = 0;
    int mode = 0;
    int count = 20;
    int osMask = 7;
    bool isMerged = false;
    bool isPerClock = false;
};

/// All machines that passed, in order, and which of them are shown. The order of machines of one
/// score is one of many.
struct ranking {
    QVector<benchResults> machines;
    QVector<int> shown;
};

inline bool passes(const QString &os, int mask)
{
    const QStringList words = {QStringLiteral("android"), QStringLiteral("linux"),
                               QStringLiteral("windows")};
    const int place = words.indexOf(os);
    return place >= 0 && (mask & (1 << place)) != 0;
}

inline benchResults meanMachine(const QVector<benchResults> &group)
{
    QSet<QString> names;
    for (const benchResults &machine : group) {
        for (const QString &name : machine.getTests().keys())
            names.insert(name);
    }
    benchResults mean = group.first();
    for (const QString &name : names) {
        float sum = group.first().getTests().value(name).value;
        for (int i = 1; i < group.size(); ++i) {
            if (group[i].getTests().contains(name))
                sum += group[i].getTests().value(name).value;
        }
        mean.setTest(name, benchResults::test(sum / static_cast<float>(group.size())));
    }
    return mean;
}

inline QVector<benchResults> merged(const QVector<benchResults> &machines)
{
    QStringList keys;
    for (const benchResults &machine : machines)
        keys.append(machine.getName().toLower());
    keys.removeDuplicates();
    keys.sort(Qt::CaseSensitive);
    QVector<benchResults> means;
    for (const QString &key : keys) {
        QVector<benchResults> group;
        for (const benchResults &machine : machines) {
            if (machine.getName().toLower() == key)
                group.append(machine);
        }
        means.append(group.size() == 1 ? group.first() : meanMachine(group));
    }
    return means;
}

inline bool isCounted(const testFacts &test, int kind)
{
    if (test.isSingleOnly)
        return false;
    return kind >= 2 || test.isMulticore == (kind == 1);
}

inline float rate(const benchResults &machine, const testFacts &test, bool isPerClock)
{
    float result = machine.getTests().value(test.name).value;
    if (isPerClock)
        result /= machine.getFrequency();
    if (isPerClock && test.isMulticore)
        result /= static_cast<float>(machine.getThreads());
    return result;
}

inline float score(const benchResults &machine, const benchResults &reference,
                   const QVector<testFacts> &tests, const wish &wanted)
{
    QVector<float> ratios;
    for (const testFacts &test : tests) {
        if (isCounted(test, wanted.kind) && machine.getTests().contains(test.name)
            && reference.getTests().contains(test.name)) {
            ratios.append(rate(machine, test, wanted.isPerClock)
                          / rate(reference, test, wanted.isPerClock));
        }
    }
    float sum = 0;
    for (const float ratio : ratios)
        sum += ratio;
    return sum / static_cast<float>(ratios.size()) * 100.0F;
}

inline bool isBefore(float left, float right)
{
    return std::isnan(right) ? !std::isnan(left) : left > right;
}

inline QVector<benchResults> bestFirst(QVector<benchResults> machines)
{
    QVector<benchResults> ordered;
    while (!machines.isEmpty()) {
        int best = 0;
        for (int i = 1; i < machines.size(); ++i) {
            if (isBefore(machines[i].getScore(), machines[best].getScore()))
                best = i;
        }
        ordered.append(machines.takeAt(best));
    }
    return ordered;
}

/// Whether the machine at @p index of @p size, the last one being the user's, is shown.
inline bool isShown(int index, int size, const wish &wanted)
{
    const int count = wanted.count;
    if (index == size - 1 || wanted.mode == 4)
        return true;
    if (wanted.mode == 1)
        return index < count;
    if (wanted.mode == 2)
        return index >= size / 2 - count / 2 && index <= size / 2 + count / 2 - 1;
    if (wanted.mode == 3)
        return index > size - 2 - count;
    const float step = static_cast<float>(size) / static_cast<float>(count);
    for (int k = 0; static_cast<float>(k) * step < static_cast<float>(size); ++k) {
        if (std::lround(static_cast<float>(k) * step) == index)
            return true;
    }
    return false;
}

inline ranking rank(const QVector<benchResults> &list, const QVector<testFacts> &tests,
                    const wish &wanted)
{
    if (list.size() < 2)
        return {};
    QVector<benchResults> others;
    for (int i = 0; i < list.size() - 1; ++i) {
        if (passes(list[i].getOs(), wanted.osMask))
            others.append(list[i]);
    }
    if (wanted.isMerged)
        others = merged(others);
    benchResults user = list.last();
    const benchResults reference = user.isMeasured() || others.isEmpty() ? user : others.first();
    for (benchResults &machine : others)
        machine.setScore(score(machine, reference, tests, wanted));
    user.setScore(score(user, reference, tests, wanted));

    ranking result;
    result.machines = bestFirst(others);
    result.machines.append(user);
    for (int i = 0; i < result.machines.size(); ++i) {
        if (isShown(i, result.machines.size(), wanted))
            result.shown.append(i);
    }
    return result;
}

} // namespace rankingModel
