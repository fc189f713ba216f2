// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/exitCode.h"

#include <QStringList>

/// The whole program: reads @p arguments, the program's own name first, and does what they ask for.
exitCode runConsole(const QStringList &arguments);
