// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTime>

#include <chrono>

/// Where the clocks of the engine are read: the time of day, which measures, and a clock that is
/// never set, which tells how long a test has run.
struct clocks {
    QTime (*timeOfDay)();
    std::chrono::steady_clock::time_point (*steady)();
};

inline constexpr clocks systemClocks = {[] { return QTime::currentTime(); },
                                        [] { return std::chrono::steady_clock::now(); }};

/// The clocks in use. Tests put others here; it must not be changed while a stopwatch runs. A
/// reading costs one call through a pointer more than asking the system, some nanoseconds beside
/// the conversion to local time, and has the resolution of a millisecond as before.
inline clocks currentClocks = systemClocks;
