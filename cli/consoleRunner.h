// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/commandLine.h"

/// Does what @p command asks for, with @p runner, and returns the exit code. @p stop tells whether
/// a run was broken off.
exitCode runTests(const commandLine &command, benchBase &runner, stopHook &stop);

/// The whole program: reads @p arguments, runs, and lets Ctrl-C end the run after the test's
/// current work unit.
exitCode runConsole(const QStringList &arguments);
