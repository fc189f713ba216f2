// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/placing.h"

#include <cmath>

namespace
{

bool isResult(float value)
{
    return std::isfinite(value) && value != ranking::smallestBar;
}

} // namespace

std::optional<int> placing::percentSlower() const
{
    if (machines < 2)
        return {};
    return slower * 100 / (machines - 1);
}

std::optional<placing> placingOf(const QVector<benchResults> &ranked, ranking::testKind kind,
                                 const QString &testName)
{
    if (ranked.isEmpty())
        return {};
    const float own = ranking::barValue(ranked.last(), kind, testName);
    if (!isResult(own))
        return {};
    placing found;
    for (int i = 0; i + 1 < ranked.size(); ++i) {
        const float value = ranking::barValue(ranked.at(i), kind, testName);
        if (!isResult(value))
            continue;
        ++found.machines;
        found.place += value > own ? 1 : 0;
        found.slower += value < own ? 1 : 0;
    }
    return found;
}
