// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/liveLine.h"
#include "data/runProgress.h"

/// Tells in a line of the terminal which test is measured, the time that is left, and the running
/// median of its results.
class progressLine : public measurementHook
{
public:
    /// @p testCount tests, repetitions counted, are to be measured for @p testTime each.
    progressLine(liveLine &target, int testCount, std::chrono::milliseconds testTime);

    void testStarts(const testBase &test, const QSize &resolution) override;
    void roundMeasured(const roundSpan &span) override;
    void testEnded(const testBase &test, testEnd end, float average) override;

private:
    void show();

    liveLine &line;
    runProgress progress;
    std::chrono::steady_clock::time_point shown;
};
