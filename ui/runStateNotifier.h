// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The one place where a full run is announced. Nothing listens so far.
class runStateNotifier
{
public:
    /// Called with true just before a full run and with false just after it.
    void runStateChanged([[maybe_unused]] bool isRunning) {}
};
