// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/consoleLog.h"

#include "cli/liveLine.h"
#include "console/standardStreams.h"

void consoleLog::print(const QString &text)
{
    if (!stream)
        return;
    if (line) {
        line->clear();
        line->logged(text);
    }
    writeText(text, stream);
}
