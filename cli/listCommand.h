// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/requests.h"
#include "console/exitCode.h"

/// The tests and resolutions, for people.
QString listText(const QStringList &testNames, const QStringList &resolutionNames);

/// The same as JSON, with what is known of each test.
QByteArray listJson(const QStringList &resolutionNames);

/// The option --list.
exitCode listCommand(const listRequest &wanted, const QStringList &resolutionNames);
