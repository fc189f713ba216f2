// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/clock.h"

/// While it lives, both clocks of the engine stand still but for what a test lets pass.
class fakeClock
{
public:
    explicit fakeClock(QTime start = QTime(12, 0))
    {
        dayTime = start;
        steadyTime = {};
        currentClocks = {timeOfDay, steady};
    }
    fakeClock(const fakeClock &) = delete;
    fakeClock &operator=(const fakeClock &) = delete;
    ~fakeClock() { currentClocks = systemClocks; }

    static QTime timeOfDay() { return dayTime; }
    static std::chrono::steady_clock::time_point steady() { return steadyTime; }
    static void pass(std::chrono::milliseconds time)
    {
        dayTime = dayTime.addMSecs(static_cast<int>(time.count()));
        steadyTime += time;
    }
    /// Someone sets the clock; the one that is never set goes on as before.
    static void set(QTime time) { dayTime = time; }
    /// Less than the resolution of a stopwatch.
    static void passUnseen(std::chrono::nanoseconds time) { steadyTime += time; }

private:
    inline static QTime dayTime;
    inline static std::chrono::steady_clock::time_point steadyTime;
};
