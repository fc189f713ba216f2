// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/requests.h"
#include "console/exitCode.h"

/// Runs what @p wanted asks for, with a check, warnings, progress, and what is kept and written of
/// the run. The exit code.
exitCode runCommand(const runRequest &wanted);
