// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class testBase;

/// Receives the text of the log. A text carries its own line ends; nothing is added to it.
class printHook
{
public:
    virtual void print(const QString &text) = 0;
    virtual ~printHook() = default;
};

/// Follows a test while it is timed.
class updateHook
{
public:
    /// @p test is set up and about to be timed; its frame buffer stays valid until after updateEnd.
    virtual void updateStart(testBase *test) = 0;
    /// Called after every timed run. @p elapsedMs is the wall time in milliseconds since the
    /// previous call. This is the only moment at which a user interface can stay responsive.
    virtual void updateProgress(testBase *test, int elapsedMs) = 0;
    virtual void updateEnd(testBase *test) = 0;
    virtual ~updateHook() = default;
};

/// Asked after every timed run, and after every test of a full run.
class stopHook
{
public:
    /// True ends the run.
    virtual bool isStopRequested() = 0;
    virtual ~stopHook() = default;
};
