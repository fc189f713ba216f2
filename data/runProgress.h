// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/measurementHook.h"

#include <QString>

#include <chrono>
#include <vector>

/// How far a run is, and what the present test has given so far: what both programs show of a run.
class runProgress : public measurementHook
{
public:
    /// @p testCount tests, repetitions counted, are to be measured for @p testTime each.
    runProgress(int testCount, std::chrono::milliseconds testTime);

    void testStarts(const testBase &test, const QSize &resolution) override;
    void roundMeasured(const roundSpan &span) override;
    void testEnded(const testBase &test, testEnd end, float average) override;

    /// The place of the present test, counted from 1, and how many there are.
    int place() const { return started; }
    int testCount() const { return count; }
    /// The name of the present test, without blanks at its ends; empty between two tests.
    QString testName() const;
    /// The time that is left if each test takes its time.
    std::chrono::milliseconds left() const;
    /// How much of the run is over: from 0 to 1.
    double share() const;
    /// The rounds of the present test so far.
    int rounds() const { return static_cast<int>(spans.size()); }
    /// What the median round gives, such as "512.3 MPixel/s"; empty before there is one.
    QString medianText() const;
    /// The standard deviation of the rounds as a share of their mean, such as "0.4 %"; empty before
    /// the second round.
    QString spreadText() const;

private:
    /// How much of the present test is over.
    std::chrono::milliseconds passed() const;

    int count;
    std::chrono::milliseconds time;
    int started = 0;
    const testBase *current = nullptr;
    std::chrono::steady_clock::time_point testStart;
    std::vector<std::chrono::nanoseconds> spans;
    /// The mean of the rounds in seconds, and the sum of their squared distances from it.
    double mean = 0;
    double squares = 0;
};

/// @p span as minutes and seconds, such as "2:24", rounded up.
QString timeText(std::chrono::milliseconds span);
