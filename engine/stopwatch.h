// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTime>

/// A stopwatch of one millisecond on the time of day, started by its construction.
class stopwatch
{
public:
    /// Milliseconds since the start; wraps after 24 hours.
    int elapsed() const
    {
        constexpr int msPerDay = 24 * 60 * 60 * 1000;
        const int span = started.msecsTo(QTime::currentTime());
        return span < 0 ? span + msPerDay : span;
    }

private:
    QTime started = QTime::currentTime();
};
