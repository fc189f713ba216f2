// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The exit codes of the console programs.
enum exitCode {
    exitSuccess = 0,
    exitFailure = 1,
    exitUsage = 2,      ///< arguments that make no sense
    exitCannotTell = 3, ///< a check that could not be made
    exitWrong = 4,      ///< a check that failed before a run, which is not reported then
    exitLostOutput = 5, ///< of the console runner: not all that was to be written could be
    exitNoUpload = 6,   ///< the results could not be uploaded
    exitHungUp = 129,   ///< 128 and the signal that ended the run
    exitInterrupted = 130,
    exitTerminated = 143
};
