// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/suiteFacts.h"

#include "tests/suiteTable.h"

namespace
{

/// Takes the facts of each row, and leaves how its test is made.
struct collector {
    std::vector<testFacts> &rows;

    template <typename workload> void operator()(made<workload>, const testFacts &row) const
    {
        rows.push_back(row);
    }
};

} // namespace

const std::vector<testFacts> &suiteFacts()
{
    static const std::vector<testFacts> all = [] {
        std::vector<testFacts> rows;
        forEachTest(collector{rows});
        return rows;
    }();
    return all;
}
