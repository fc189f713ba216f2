// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The exit codes of the console programs.
enum exitCode {
    exitSuccess = 0,
    exitFailure = 1,
    exitUsage = 2, ///< arguments that make no sense
    exitInterrupted = 130
};
