// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/standardStreams.h"
#include "server/serverCommand.h"
#include "server/serverProgram.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    occupyStandardHandles();
    const QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(serverProgramName());
    return exitCodeAfterOutput(runServerProgram(QCoreApplication::arguments()),
                               serverProgramName());
}
