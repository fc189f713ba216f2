// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/exitCode.h"
#include "engine/hooks.h"

/// Ends a run, after the present round, when Ctrl-C, SIGTERM or a hang-up asks for it; the same
/// signal again ends the program at once. A signal that the program was told to ignore when it was
/// started, as a script in the background is, or under nohup, goes on being ignored. A broken pipe
/// costs the run its output, but not its results.
class signalStop : public stopHook
{
public:
    /// From here on signals are listened to.
    signalStop();

    bool isStopRequested() override;
    /// The exit code of a run that was stopped.
    exitCode code() const;
};
