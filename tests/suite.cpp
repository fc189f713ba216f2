// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/suite.h"

#include "tests/suiteTable.h"

#include <type_traits>

namespace
{

/// Makes the test of each row.
struct maker {
    suite &tests;
    printHook *printTarget;

    template <typename workload> void operator()(made<workload> row, const testFacts &facts) const
    {
        if constexpr (std::is_constructible_v<workload, printHook *, quint32>) {
            tests.push_back(std::make_unique<workload>(printTarget, row.mode));
        } else if constexpr (std::is_constructible_v<workload, quint32>) {
            tests.push_back(std::make_unique<workload>(row.mode));
        } else {
            tests.push_back(std::make_unique<workload>());
        }
        tests.back()->setSingleOnly(!facts.isInFullRuns());
    }
};

} // namespace

suite makeSuite(printHook *printTarget)
{
    suite tests;
    forEachTest(maker{tests, printTarget});
    return tests;
}
