// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/clock.h"

/// A stopwatch of one millisecond on the time of day, started by its construction.
class stopwatch
{
public:
    /// Milliseconds since the start; wraps after 24 hours.
    int elapsed() const
    {
        constexpr int msPerDay = 24 * 60 * 60 * 1000;
        const int span = started.msecsTo(currentClocks.timeOfDay());
        return span < 0 ? span + msPerDay : span;
    }

private:
    QTime started = currentClocks.timeOfDay();
};

/// A stopwatch of one millisecond on the clock that is never set, started by its construction.
class steadyStopwatch
{
public:
    int elapsed() const
    {
        const auto span = currentClocks.steady() - started;
        return static_cast<int>(
            std::chrono::duration_cast<std::chrono::milliseconds>(span).count());
    }

private:
    std::chrono::steady_clock::time_point started = currentClocks.steady();
};
