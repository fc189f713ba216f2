// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/exitCode.h"

#include <QStringList>

/// The whole of fennick-server: reads @p arguments, does what they ask for, and returns the exit
/// code. Needs an application object, and must be called before other threads are started: it
/// blocks the signals that end the program, and later threads inherit that.
exitCode runServerProgram(const QStringList &arguments);
