// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/requests.h"
#include "cli/testChoice.h"
#include "console/options.h"

/// Reads @p arguments, the program's own name first: a command of the table, or none for a run, and
/// its options. What is not among @p tests and @p resolutionNames is an error that lists them.
parsed<request> parseCommandLine(const QStringList &arguments, const std::vector<listedTest> &tests,
                                 const QStringList &resolutionNames);
