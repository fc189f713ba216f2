// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/commandTable.h"

/// What --help says about @p command; that of the run also lists the other commands.
QString helpText(const commandRow &command);

/// The names of the commands that have one.
QStringList commandNames();

/// The manual page of the program in the macros of man.
QString manualPage();
