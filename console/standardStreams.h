// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/exitCode.h"

#include <QString>

#include <cstdio>

/// Opens those of the three standard handles that the program was started without, so that nothing
/// can be read from them or written to them. Otherwise the next file to be opened would get their
/// number, and what is printed would end up in it. To be called before anything is opened.
void occupyStandardHandles();

/// Writes @p text at once, in the locale's encoding.
void writeText(const QString &text, std::FILE *stream);

/// Says on standard error that @p program has failed, in one @p sentence. The exit code for that.
exitCode complain(const QString &program, const QString &sentence);

/// Closes standard output. The exit code of @p program, which would end with @p code: a success
/// without all of the output is none, but @p lost. Says on standard error if output was lost, at
/// any time since the start.
exitCode exitCodeAfterOutput(exitCode code, const QString &program, exitCode lost = exitFailure);
