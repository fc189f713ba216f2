// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/hooks.h"

#include <cstdio>

class liveLine;

/// The log of a run in a terminal.
class consoleLog : public printHook
{
public:
    /// Writes to @p target, or nowhere if it is null. @p progress, which may be null, stands in
    /// the same terminal.
    consoleLog(std::FILE *target, liveLine *progress) : stream(target), line(progress) {}

    void print(const QString &text) override;

private:
    std::FILE *stream;
    liveLine *line;
};
