// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/ceilings.h"

#include "data/builtInList.h"
#include "tests/suiteFacts.h"

#include <algorithm>
#include <cmath>

namespace
{

/// To two digits, so that it can be said in words.
float roundedUp(float value)
{
    const float unit = std::pow(10.0F, std::floor(std::log10(value)) - 1);
    return std::ceil(value / unit) * unit;
}

} // namespace

const QMap<QString, float> &resultCeilings()
{
    static const QMap<QString, float> ceilings = [] {
        QMap<QString, float> best;
        for (const testFacts &test : suiteFacts()) {
            if (test.isInFullRuns())
                best.insert(QString::fromUtf8(test.name), 0);
        }
        for (const benchResults &machine : builtInMachines()) {
            for (auto result = best.begin(); result != best.end(); ++result) {
                const float value = machine.getTests().value(result.key()).value;
                *result = std::max(*result, ceilingFactor * value);
            }
        }
        for (float &ceiling : best) {
            if (ceiling > 0)
                ceiling = roundedUp(ceiling);
        }
        return best;
    }();
    return ceilings;
}
