// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/roundSpan.h"

#include <QtGlobal>

class testBase;

/// Times the work units of one test, in seconds, on a clock of one millisecond. The coarse clock is
/// deliberate: all stored results were made with it, and a shorter span measures as 0.
class benchAndMeasure
{
public:
    /// Must be called before the first measurement. Leaves the average as it is.
    void reset();
    /// Runs one work unit of @p test (preRun, timed run, postRun) and returns its span in seconds.
    /// Without a test only the clock is read.
    float measure(testBase *test);
    /// The span of the latest run on both clocks.
    const roundSpan &getLatestSpan() const { return latest; }
    /// Mean span per run in seconds.
    virtual float getAverage() const { return average; }

    quint32 getCount() const { return count; }
    float getTotal() const { return total; }
    float getMinimum() const { return minimum; }
    float getMaximum() const { return maximum; }

private:
    quint32 count = 0;
    float total = 0;
    float minimum = 0;
    float maximum = 0;
    float average = 0;
    roundSpan latest;
};
