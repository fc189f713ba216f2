// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Writes one line with the time to standard error. Never hand it an address or a name.
void writeLog(const QString &text);
