// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/requests.h"
#include "console/exitCode.h"

struct runRecord;

/// Writes @p content to the file @p name, or to standard output for "-". A file that was there is
/// replaced by a complete one, or stays. What fails is said on standard error.
exitCode writeOutput(const QString &name, const QByteArray &content);

/// Writes @p record to all of @p files.
exitCode writeOutputs(const outputFiles &files, const runRecord &record);

/// Whether all of @p files can be written, as far as that can be told before. Leaves nothing
/// behind, and says what is the matter on standard error.
exitCode checkOutputs(const outputFiles &files);
