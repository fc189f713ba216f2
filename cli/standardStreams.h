// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Opens those of the three standard handles that the program was started without, so that nothing
/// can be read from them or written to them. Otherwise the next file to be opened would get their
/// number, and what is printed would end up in it. To be called before anything is opened.
void occupyStandardHandles();

/// Closes standard output. The exit code of the program named @p program that would end with
/// @p code: a success without all of the output is none. Says on standard error if output was lost,
/// at any time since the start.
int exitCodeAfterOutput(int code, const QString &program);
