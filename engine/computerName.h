// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Sets COMPUTERNAME, from which this machine's record takes its name, to @p hostName where it is
/// missing or empty: only Windows sets it. An empty @p hostName changes nothing.
void provideComputerName(const QString &hostName);
