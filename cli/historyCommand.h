// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/requests.h"
#include "console/exitCode.h"
#include "data/runRecord.h"
#include "engine/outcome.h"

/// The run that @p which names: "last" or nothing for the last one that was kept, a number of the
/// history, or a file.
outcome<runRecord> findRun(const QString &which);

/// The command history.
exitCode historyCommand();

/// The command show.
exitCode showCommand(const showRequest &wanted);
