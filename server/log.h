// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Writes a line with the time to standard error. The text must contain no address and no name of a
/// person or computer.
void writeLog(const QString &text);
