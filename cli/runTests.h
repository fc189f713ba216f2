// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/requests.h"
#include "console/exitCode.h"
#include "engine/hooks.h"

#include <functional>

/// What happens around the tests of a run. Each may be empty.
struct runEvents {
    /// All tests are about to be run for the time @p index, counted from 0.
    std::function<void(int index)> repetitionStarts;
    /// The last test is over; results are not uploaded yet. Other than success stands for output
    /// that was lost.
    std::function<exitCode(bool isStopped)> ended;
};

/// Runs the tests that @p wanted asks for with @p runner, stores and uploads their results, and
/// returns the exit code. @p stop tells whether a run was broken off, for which @p stopped is the
/// code.
exitCode runTests(
    const runRequest &wanted, benchBase &runner, stopHook &stop, const runEvents &events = {},
    const std::function<exitCode()> &stopped = [] { return exitInterrupted; });
