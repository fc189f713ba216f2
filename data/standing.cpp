// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/standing.h"

#include <algorithm>
#include <cmath>

namespace
{

const ranking::choices everyMachine = [] {
    ranking::choices wanted;
    wanted.kind = ranking::allTests;
    wanted.mode = ranking::allDevices;
    return wanted;
}();

/// Best score first, then @p unit, which scores 100.
QVector<benchResults> ranked(QVector<benchResults> machines, benchResults unit,
                             const QVector<ranking::rankedTest> &tests)
{
    unit.setMeasured(true);
    machines.append(unit);
    return ranking::rankedMachines(machines, tests, everyMachine);
}

bool isWhole(const benchResults &machine, const QVector<ranking::rankedTest> &tests)
{
    const ranking::gaps gaps = ranking::gapsOf({machine}, tests, everyMachine);
    return gaps.results == gaps.tests;
}

} // namespace

std::optional<standing> standingOf(const benchResults &machine, const benchResults &unit,
                                   const QVector<benchResults> &list,
                                   const QVector<ranking::rankedTest> &tests)
{
    if (list.isEmpty() || !isWhole(machine, tests) || !isWhole(unit, tests))
        return std::nullopt;
    const float score = ranked({machine}, unit, tests).first().getScore();
    const QVector<benchResults> ordered = ranked(list, unit, tests);
    const auto better = std::count_if(ordered.begin(), ordered.end() - 1,
                                      [&](const auto &one) { return one.getScore() > score; });
    return standing{static_cast<double>(score), static_cast<int>(better) + 1,
                    static_cast<int>(list.size())};
}
