// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

/// The whole of fennick-server: reads @p arguments, does what they ask for, and returns the exit
/// code: 0 for done, 1 for failed, 2 for arguments that make no sense. Needs an application object,
/// and must be called before other threads are started, which it keeps from the signals that end
/// it.
int runServerProgram(const QStringList &arguments);
