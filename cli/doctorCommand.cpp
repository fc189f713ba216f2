// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/doctorCommand.h"

#include "console/standardStreams.h"
#include "data/examination.h"

exitCode doctorCommand()
{
    writeText(doctorPage(examination()), stdout);
    return exitSuccess;
}
