// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/exitCode.h"
#include "engine/digestVerdict.h"
#include "engine/hooks.h"
#include "tests/suite.h"

#include <QMap>

/// Checks each of @p tests against its known frames, and prints a line for it: ok, WRONG or cannot
/// tell. What was found, by the names of the tests; those after a stop are left out.
QMap<QString, digestVerdict> verifyTests(const suite &tests, printHook &log, stopHook &stop);

/// What the exit code of the command is for @p verdicts.
exitCode verifyCode(const QMap<QString, digestVerdict> &verdicts);

/// The command verify, over the suite of the benchmark.
exitCode verifyCommand();
