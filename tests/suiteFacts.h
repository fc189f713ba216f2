// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/workloadFacts.h"

#include <vector>

enum testCores : bool { oneCore, allCores };
enum testRuns : bool { inFullRuns, isSingleOnly };

/// What is known of a test of the suite without making it.
struct testFacts {
    const char *name; ///< exact: the key of its results
    testCores cores;
    const workloadFacts &workload;
    testRuns runs = inFullRuns; ///< a single-only test is left out of a full run

    bool isMulticore() const { return cores == allCores; }
    bool isInFullRuns() const { return runs == inFullRuns; }
};

/// All tests of the suite in the order in which they run.
const std::vector<testFacts> &suiteFacts();
